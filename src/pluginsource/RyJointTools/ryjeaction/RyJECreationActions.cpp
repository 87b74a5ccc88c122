#include "pluginsource/RyJointTools/ryjeaction/RyJECreationActions.h"

#include "pluginsource/RyJointTools/dialogs/RyGuardedDialog.h"
#include "pluginsource/RyJointTools/dialogs/RyJEBoneCreationDlg.h"
#include "pluginsource/RyJointTools/dialogs/RyJECreateControlBonesDlg.h"
#include "pluginsource/RyJointTools/operations/createSiblingBone.h"
#include "pluginsource/RyJointTools/operations/duplicateBones.h"
#include "pluginsource/RyJointTools/operations/splitBone.h"
#include "pluginsource/RyJointTools/ryjeaction/findJointEditorTool.h"
#include "pluginsource/RyJointTools/ryjeaction/selectionBoxes.h"
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QPointer>

#include <algorithm>

void RyJECreateBoneAction::executeAction()
{
    RyJointEditorTool *tool = findJointEditorTool();
    if (!tool)
        return;
    if (!tool->currentNode()) {
        informOfSelection(RyJEToolAction::tr("A skeleton or bone must be selected to continue."));
        return;
    }
    RyGuardedDialog<RyJEBoneCreationDlg>(tool).exec();
}

static void saySkinIsMissing()
{
    if (RyMainWindow *window = RyApp::getInterface())
        window->showMessage(RyJEToolAction::tr("Nothing done: select a bone of a figure that has a skin."));
}

void RyJECreateSiblingBoneAction::executeAction()
{
    if (!createSiblingBone(qobject_cast<RyBone *>(ryScene()->getPrimarySelection())))
        saySkinIsMissing();
}

namespace {

struct FigureBones
{
    RyFigure *figure;
    std::vector<RyBone *> bones; // in order of selection
};

std::vector<FigureBones> selectedBonesByFigure()
{
    std::vector<FigureBones> list;
    for (RyNode *node : ryScene()->selectedNodeListIterator()) {
        auto *bone = qobject_cast<RyBone *>(node);
        auto *figure = bone ? qobject_cast<RyFigure *>(bone->getSkeleton()) : nullptr;
        if (!figure)
            continue;
        auto place =
            std::find_if(list.begin(), list.end(), [figure](const FigureBones &each) { return each.figure == figure; });
        if (place == list.end())
            place = list.insert(place, {figure, {}});
        place->bones.push_back(bone);
    }
    return list;
}

/// Every reason has its own line of this file.
void logFailure(const RyDuplicateFailure &failure)
{
    const auto log = [](int line, const QString &message) {
        RyMessageLog::global().warning(ryDeveloperMessage(__FILE__, line, message));
    };
    switch (failure.reason) {
    case RyDuplicateFailure::NoSkin:
        log(__LINE__, QStringLiteral("Figure with no skin"));
        break;
    case RyDuplicateFailure::NoBone:
        log(__LINE__, QStringLiteral("Could not duplicate bone : ") + failure.bone);
        break;
    case RyDuplicateFailure::NoBinding:
        log(__LINE__, QStringLiteral("Could not duplicate bone binding : ") + failure.bone);
        break;
    }
}

} // namespace

void RyJEDuplicateBonesAction::executeAction()
{
    RyAssetIOMgr *assets = RyApp::getAssetIOMgr();
    if (!assets)
        return;
    const std::vector<FigureBones> selection = selectedBonesByFigure();
    if (selection.empty()) {
        informOfSelection(RyJEToolAction::tr("A bone must be selected to continue."));
        return;
    }
    for (const FigureBones &each : selection) {
        for (const RyDuplicateFailure &failure : duplicateBones(each.figure, each.bones, *assets))
            logFailure(failure);
    }
}

void RyJESplitBoneAction::executeAction()
{
    if (!splitBone(qobject_cast<RyBone *>(ryScene()->getPrimarySelection())))
        saySkinIsMissing();
}

static void reportControlBones(int made, int skipped)
{
    const QString text = made == 0 && skipped == 0
                             ? RyJEToolAction::tr("Nothing done: the selected bones have no children.")
                             : RyJEToolAction::tr("Control bones made: %1. Bones skipped, as they have or are control "
                                                  "bones of that prefix: %2.")
                                   .arg(made)
                                   .arg(skipped);
    if (RyMainWindow *window = RyApp::getInterface())
        window->showMessage(text);
    RyMessageLog::global().info(text);
}

void RyJECreateControlBonesAction::executeAction()
{
    // While the dialog is open the bone may leave the scene, and be deleted.
    const QPointer<RyBone> primary(qobject_cast<RyBone *>(ryScene()->getPrimarySelection()));
    if (!primary || !RySkinBinding::findSkinFromNode(primary)) {
        warnOfSelection(
            RyJEToolAction::tr("One or more bone(s) of a weight mapped figure must be selected to continue."));
        return;
    }
    RyGuardedDialog<RyJECreateControlBonesDlg> dialog(RyApp::getInterface());
    if (dialog.exec() != QDialog::Accepted || !primary || primary->getScene() != ryScene())
        return;
    const std::vector<RyBone *> bones =
        listBonesToControl(ryScene()->selectedNodeListIterator(), primary->getSkeleton(), dialog->getMode());
    RyUndoStackHold hold;
    const int made = createControlBones(bones, dialog->getPrefix());
    if (made > 0)
        hold.accept(text());
    else
        hold.cancel();
    reportControlBones(made, int(bones.size()) - made);
}
