#include "plugin/PluginStage.h"

#include "rycore/app/RyApp.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyBone.h"
#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyActionMenu.h"
#include "rycore/ui/RyActionMgr.h"
#include "rycore/ui/RyMenu.h"

namespace {

const QStringList createMenu = {"Create >",
                                "  RyJEToggleViewBoneCreationAction",
                                "  -",
                                "  RyJECreateDonorFigureAction",
                                "  -",
                                "  RyJECreateBoneAction",
                                "  RyJECreateSiblingBoneAction",
                                "  RyJEDuplicateBonesAction",
                                "  RyJECreateControlBonesAction",
                                "  -",
                                "  RyJESplitBoneAction"};
const QStringList editMenu = {"Edit >",
                              "  RyJETogglePropagateTranslationAction",
                              "  -",
                              "  RyJEConvertPropToFigureAction",
                              "  RyJEConvertFigureToPropAction",
                              "  -",
                              "  RyJERenameNodeAction",
                              "  RyJEReparentBoneAction",
                              "  -",
                              "  RyJEMirrorAction",
                              "  -",
                              "  RyJEBakeRotationsAction",
                              "  -",
                              "  RyJETransferWSRiggingAction",
                              "  -",
                              "  RyMVCCageAdjustRigToShapeAction"};
const QStringList deleteMenu = {"Delete >", "  RyJEDeleteBoneAction", "  RyJEDeleteUnusedBonesAction"};
const QStringList orderMenu = {"Rotation Order >",
                               "  RyJERotationOrderXYZAction",
                               "  RyJERotationOrderXZYAction",
                               "  RyJERotationOrderYXZAction",
                               "  RyJERotationOrderYZXAction",
                               "  RyJERotationOrderZXYAction",
                               "  RyJERotationOrderZYXAction"};
const QStringList alignMenu = {"Align >", "  RyJEToggleAutoAlignNodeAction", "  -", "  RyJEAlignNodeAction",
                               "  RyJEAlignAllBonesAction"};
const QStringList snapMenu = {"Snap >", "  RyJESnapCenterPointAction", "  RyJESnapEndPointAction", "  -",
                              "  RyJEToggleAutoSnapEndPointsAction"};
const QStringList memorizeMenu = {"Memorize >", "  RyJEMemorizeFigureRiggingPropertiesAction", "  -",
                                  "  RyJEMemorizeNodeRiggingPropertiesAction"};
const QStringList restoreMenu = {"Restore >", "  RyJERestoreFigureRiggingPropertiesAction", "  -",
                                 "  RyJERestoreNodeRiggingPropertiesAction"};

const QStringList toolMenu = QStringList{"RyJECustomColorsAction", "-"} + createMenu + editMenu + QStringList("-") +
                             deleteMenu + QStringList("-") + orderMenu + QStringList("-") + alignMenu + snapMenu +
                             QStringList("-") + memorizeMenu + restoreMenu;
const QStringList contextMenu = QStringList{"RyJECustomColorsAction", "-"} + createMenu + editMenu +
                                QStringList{"  -", "  RyJESelectedNodesAttributesEditAction"} + QStringList("-") +
                                deleteMenu + QStringList("-") + alignMenu + snapMenu + QStringList("-") + memorizeMenu +
                                restoreMenu;

const char *const anyReason = "Select something in the scene first.";
const char *const skeletonOrBoneReason = "Select a bone or a figure first.";
const char *const boneReason = "Select a bone first.";
const char *const figureReason = "Select a weight-mapped figure or a part of one first.";
const char *const boneOfFigureReason = "Select a bone of a weight-mapped figure first.";

/// Whether an action is enabled with the selection: nothing, a prop, a skeleton that is no figure, its bone, a bone of
/// a figure, a figure.
struct EnablingRow
{
    const char *action;
    const char *enabled;
    const char *reason; // while it is disabled
};

const EnablingRow enablingRows[] = {
    {"RyJETogglePropagateTranslationAction", "111111", ""},
    {"RyJEToggleViewBoneCreationAction", "111111", ""},
    {"RyJERotationOrderXYZAction", "011111", anyReason},
    {"RyJERotationOrderXZYAction", "011111", anyReason},
    {"RyJERotationOrderYXZAction", "011111", anyReason},
    {"RyJERotationOrderYZXAction", "011111", anyReason},
    {"RyJERotationOrderZXYAction", "011111", anyReason},
    {"RyJERotationOrderZYXAction", "011111", anyReason},
    {"RyJEToggleAutoAlignNodeAction", "111111", ""},
    {"RyJEAlignNodeAction", "011111", anyReason},
    {"RyJEAlignAllBonesAction", "001111", skeletonOrBoneReason},
    {"RyJESnapCenterPointAction", "001111", skeletonOrBoneReason},
    {"RyJESnapEndPointAction", "001111", skeletonOrBoneReason},
    {"RyJEToggleAutoSnapEndPointsAction", "111111", ""},
    {"RyJECreateSiblingBoneAction", "000010", boneOfFigureReason},
    {"RyJESplitBoneAction", "011111", anyReason},
    {"RyJEDeleteBoneAction", "000110", boneReason},
    {"RyJECreateBoneAction", "001111", skeletonOrBoneReason},
    {"RyJERenameNodeAction", "011111", anyReason},
    {"RyJEReparentBoneAction", "111111", ""},
    {"RyJEDeleteUnusedBonesAction", "000011", figureReason},
    {"RyJESelectedNodesAttributesEditAction", "111111", ""},
    {"RyJECustomColorsAction", "111111", ""},
    {"RyJEConvertPropToFigureAction", "111111", ""},
    {"RyJEConvertFigureToPropAction", "111111", ""},
    {"RyJEDuplicateBonesAction", "011111", anyReason},
    {"RyJECreateControlBonesAction", "111111", ""},
    {"RyJEBakeRotationsAction", "000011", figureReason},
    {"RyJEMemorizeFigureRiggingPropertiesAction", "001111", skeletonOrBoneReason},
    {"RyJEMemorizeNodeRiggingPropertiesAction", "011111", anyReason},
    {"RyJERestoreFigureRiggingPropertiesAction", "001111", skeletonOrBoneReason},
    {"RyJERestoreNodeRiggingPropertiesAction", "011111", anyReason},
    {"RyJETransferWSRiggingAction", "111111", ""},
    {"RyJECreateDonorFigureAction", "111111", ""},
    {"RyJEMirrorAction", "001111", skeletonOrBoneReason},
};

} // namespace

/// The plug-in's menus as the host fills them, and when their entries are enabled.
class RyJointToolsMenusTest : public QObject, private PluginStage
{
    Q_OBJECT

private slots:
    void init() { open(); }
    void cleanup() { close(); }
    void toolMenuInOrder();
    void contextMenuInOrder();
    void everyActionOnce();
    void entriesAreTheActions();
    void unloadedClassesLeaveNoHoles();
    void enabling_data();
    void enabling();
    void allActionsInTheTable();

private:
    RyAction *action(const QString &name) const { return m_window->getActionMgr()->findAction(name); }
};

void RyJointToolsMenusTest::toolMenuInOrder()
{
    RyMenu menu;
    m_tool->addToolMenuItems(&menu);
    QCOMPARE(menu.describe(), toolMenu);
    // Filled again, it is the same and no longer.
    menu.clear();
    QVERIFY(menu.isEmpty());
    m_tool->addToolMenuItems(&menu);
    QCOMPARE(menu.describe(), toolMenu);
}

void RyJointToolsMenusTest::contextMenuInOrder()
{
    RyActionMenu menu;
    m_tool->fillToolOptionsMenu(&menu);
    QCOMPARE(menu.describe(), contextMenu);
}

void RyJointToolsMenusTest::everyActionOnce()
{
    QStringList expected;
    for (const RyAction *action : m_window->getActionMgr()->getActions()) {
        if (action->getActionGroup() == QStringLiteral("Ostra Joint Editor"))
            expected.append(QString::fromLatin1(action->metaObject()->className()));
    }
    QCOMPARE(expected.size(), 35);
    expected.append(QStringLiteral("RyMVCCageAdjustRigToShapeAction"));
    QStringList inMenus;
    for (const QString &line : toolMenu) {
        if (line.trimmed().startsWith(QStringLiteral("Ry")))
            inMenus.append(line.trimmed());
    }
    inMenus.append(QStringLiteral("RyJESelectedNodesAttributesEditAction"));
    expected.sort();
    inMenus.sort();
    QCOMPARE(inMenus, expected);
}

void RyJointToolsMenusTest::entriesAreTheActions()
{
    RyActionMenu model;
    m_tool->fillToolOptionsMenu(&model);
    QMenu menu;
    model.fill(&menu);
    QCOMPARE(menu.actions().first(), action(QStringLiteral("RyJECustomColorsAction")));
    QStringList titles;
    for (const QAction *entry : menu.actions()) {
        if (!entry->menu())
            continue;
        titles.append(entry->text());
        QVERIFY(entry->isVisible());
        QVERIFY(entry->menu()->toolTipsVisible());
    }
    QCOMPARE(titles, QStringList({"Create", "Edit", "Delete", "Align", "Snap", "Memorize", "Restore"}));
}

void RyJointToolsMenusTest::unloadedClassesLeaveNoHoles()
{
    m_window->getActionMgr()->deleteActions();
    RyMenu menu;
    m_tool->addToolMenuItems(&menu);
    for (const QString &line : menu.describe())
        QCOMPARE(line, QStringLiteral("-"));
    RyActionMenu model;
    m_tool->fillToolOptionsMenu(&model);
    QMenu filled;
    model.fill(&filled);
    for (const QAction *entry : filled.actions())
        QVERIFY(entry->isSeparator() || !entry->isVisible());
}

void RyJointToolsMenusTest::enabling_data()
{
    QTest::addColumn<QString>("enabled");
    QTest::addColumn<QString>("reason");
    for (const EnablingRow &row : enablingRows)
        QTest::newRow(row.action) << row.enabled << row.reason;
}

void RyJointToolsMenusTest::enabling()
{
    QFETCH(QString, enabled);
    QFETCH(QString, reason);
    RyAction *tested = action(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(tested);
    auto *prop = new RyNode;
    prop->setName(QStringLiteral("prop"));
    auto *skeleton = new RySkeleton;
    skeleton->setName(QStringLiteral("skeleton"));
    auto *bone = new RyBone;
    bone->setName(QStringLiteral("bone"));
    skeleton->addNodeChild(bone);
    auto *figure = new RyFigure;
    figure->setName(QStringLiteral("figure"));
    auto *figureBone = new RyBone;
    figureBone->setName(QStringLiteral("figureBone"));
    figure->addNodeChild(figureBone);
    for (RyNode *node : std::initializer_list<RyNode *>{prop, skeleton, figure})
        ryScene()->addNode(node);

    const RyNode *const selections[] = {nullptr, prop, skeleton, bone, figureBone, figure};
    QString found;
    for (const RyNode *node : selections) {
        ryScene()->setSelection(node ? std::vector<RyNode *>{const_cast<RyNode *>(node)} : std::vector<RyNode *>{});
        found += QString::number(tested->isEnabled());
        const QString expected = tested->isEnabled() ? QString() : reason;
        QCOMPARE(tested->unavailableReason(), expected);
        QCOMPARE(tested->property("unavailableReason").toString(), expected);
        QCOMPARE(tested->statusTip(), tested->isEnabled() ? tested->getDescription() : reason);
        QCOMPARE(tested->toolTip(), tested->isEnabled() ? tested->getDescription()
                                                        : tested->getDescription() + QLatin1Char('\n') + reason);
    }
    QCOMPARE(found, enabled);
}

void RyJointToolsMenusTest::allActionsInTheTable()
{
    QStringList rows;
    for (const EnablingRow &row : enablingRows)
        rows.append(QString::fromLatin1(row.action));
    QCOMPARE(rows.removeDuplicates(), 0);
    QCOMPARE(rows.size(), 35);
    for (const QString &name : rows)
        QCOMPARE(action(name)->getActionGroup(), QStringLiteral("Ostra Joint Editor"));
}

RY_TEST(RyJointToolsMenusTest)

#include "tst_RyJointToolsMenus.moc"
