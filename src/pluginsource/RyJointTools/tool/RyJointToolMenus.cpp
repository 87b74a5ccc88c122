#include "pluginsource/RyJointTools/tool/RyJointToolMenus.h"

#include "rycore/ui/RyActionMenu.h"
#include "rycore/ui/RyMenu.h"

#include <QCoreApplication>

#include <span>

namespace {

constexpr const char *separator = "";

constexpr const char *createItems[] = {"RyJEToggleViewBoneCreationAction",
                                       separator,
                                       "RyJECreateDonorFigureAction",
                                       separator,
                                       "RyJECreateBoneAction",
                                       "RyJECreateSiblingBoneAction",
                                       "RyJEDuplicateBonesAction",
                                       "RyJECreateControlBonesAction",
                                       separator,
                                       "RyJESplitBoneAction"};
constexpr const char *editItems[] = {"RyJETogglePropagateTranslationAction",
                                     separator,
                                     "RyJEConvertPropToFigureAction",
                                     "RyJEConvertFigureToPropAction",
                                     separator,
                                     "RyJERenameNodeAction",
                                     "RyJEReparentBoneAction",
                                     separator,
                                     "RyJEMirrorAction",
                                     separator,
                                     "RyJEBakeRotationsAction",
                                     separator,
                                     "RyJETransferWSRiggingAction",
                                     separator,
                                     "RyMVCCageAdjustRigToShapeAction"};
constexpr const char *contextEditItems[] = {separator, "RyJESelectedNodesAttributesEditAction"};
constexpr const char *deleteItems[] = {"RyJEDeleteBoneAction", "RyJEDeleteUnusedBonesAction"};
constexpr const char *rotationOrderItems[] = {"RyJERotationOrderXYZAction", "RyJERotationOrderXZYAction",
                                              "RyJERotationOrderYXZAction", "RyJERotationOrderYZXAction",
                                              "RyJERotationOrderZXYAction", "RyJERotationOrderZYXAction"};
constexpr const char *alignItems[] = {"RyJEToggleAutoAlignNodeAction", separator, "RyJEAlignNodeAction",
                                      "RyJEAlignAllBonesAction"};
constexpr const char *snapItems[] = {"RyJESnapCenterPointAction", "RyJESnapEndPointAction", separator,
                                     "RyJEToggleAutoSnapEndPointsAction"};
constexpr const char *memorizeItems[] = {"RyJEMemorizeFigureRiggingPropertiesAction", separator,
                                         "RyJEMemorizeNodeRiggingPropertiesAction"};
constexpr const char *restoreItems[] = {"RyJERestoreFigureRiggingPropertiesAction", separator,
                                        "RyJERestoreNodeRiggingPropertiesAction"};

struct SubMenu
{
    const char *title;
    bool separatorBefore;
    std::span<const char *const> items;
    std::span<const char *const> contextItems = {}; // follow in the context menu alone
    bool inContextMenu = true;
};

constexpr const char *firstItem = "RyJECustomColorsAction";

const SubMenu subMenus[] = {
    {QT_TRANSLATE_NOOP("RyJointEditorTool", "Create"), true, createItems},
    {QT_TRANSLATE_NOOP("RyJointEditorTool", "Edit"), false, editItems, contextEditItems},
    {QT_TRANSLATE_NOOP("RyJointEditorTool", "Delete"), true, deleteItems},
    {QT_TRANSLATE_NOOP("RyJointEditorTool", "Rotation Order"), true, rotationOrderItems, {}, false},
    {QT_TRANSLATE_NOOP("RyJointEditorTool", "Align"), true, alignItems},
    {QT_TRANSLATE_NOOP("RyJointEditorTool", "Snap"), false, snapItems},
    {QT_TRANSLATE_NOOP("RyJointEditorTool", "Memorize"), true, memorizeItems},
    {QT_TRANSLATE_NOOP("RyJointEditorTool", "Restore"), false, restoreItems},
};

void append(RyActionMenu &menu, std::span<const char *const> items)
{
    for (const char *item : items) {
        if (*item)
            menu.insertAction(QString::fromLatin1(item), -1);
        else
            menu.insertSeparator(-1);
    }
}

QString title(const SubMenu &subMenu)
{
    return QCoreApplication::translate("RyJointEditorTool", subMenu.title);
}

} // namespace

void fillToolMenu(RyMenu &menu)
{
    menu.addAction(QString::fromLatin1(firstItem), 0);
    for (const SubMenu &subMenu : subMenus) {
        if (subMenu.separatorBefore)
            menu.addSeparator(0);
        const int id = menu.addSubMenu(title(subMenu), 0);
        for (const char *item : subMenu.items) {
            if (*item)
                menu.addAction(QString::fromLatin1(item), id);
            else
                menu.addSeparator(id);
        }
    }
}

void fillContextMenu(RyActionMenu &menu)
{
    menu.insertAction(QString::fromLatin1(firstItem), -1);
    for (const SubMenu &subMenu : subMenus) {
        if (!subMenu.inContextMenu)
            continue;
        if (subMenu.separatorBefore)
            menu.insertSeparator(-1);
        auto *filled = new RyActionMenu;
        append(*filled, subMenu.items);
        append(*filled, subMenu.contextItems);
        menu.insertMenu(title(subMenu), filled, -1);
    }
}
