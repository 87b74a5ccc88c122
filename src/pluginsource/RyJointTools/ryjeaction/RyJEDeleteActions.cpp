#include "pluginsource/RyJointTools/ryjeaction/RyJEDeleteActions.h"

#include "pluginsource/RyJointTools/dialogs/runMessageBox.h"
#include "pluginsource/RyJointTools/operations/deleteBone.h"
#include "pluginsource/RyJointTools/ryjeaction/selectionBoxes.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/figure/RyTransferUtility.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackLock.h"

void RyJEDeleteBoneAction::executeAction()
{
    auto *bone = qobject_cast<RyBone *>(ryScene()->getPrimarySelection());
    if (!bone) {
        informOfSelection(RyJEToolAction::tr("A bone must be selected to continue."));
        return;
    }
    // Not undoable: the steps that came before speak of a scene with the bone.
    const RyUndoStackLock lock;
    ryUndoStack()->clearAll();
    RyNode *parent = bone->getNodeParent();
    deleteBone(bone);
    ryScene()->selectAllNodes(false);
    if (parent)
        parent->select(true);
}

void RyJEDeleteUnusedBonesAction::executeAction()
{
    const RyNode *primary = ryScene()->getPrimarySelection();
    const RyRef<RyFigure> figure(qobject_cast<RyFigure *>(primary ? primary->getSkeleton() : nullptr));
    if (!figure) {
        warnOfSelection(RyJEToolAction::tr("Please select a Korvex<sup>TM</sup> technology figure."));
        return;
    }
    const auto answer = runMessageBox(
        QMessageBox::Warning, RyApp::getDialogParent(), RyJEToolAction::tr("Remove Unused Bones"),
        RyJEToolAction::tr(
            "This will remove any unused bones in the selected figure.\nThis is not undo-able. Do you want "
            "to continue?"),
        QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes);
    // The figure may have left the scene meanwhile.
    if (answer != QMessageBox::Yes || !figure || figure->getScene() != ryScene())
        return;
    const bool hasSkin = figure->getSkinBinding();
    const int removed = RyTransferUtility::removeUnusedBones(figure);
    RyMainWindow *window = RyApp::getInterface();
    if (!window || removed > 0)
        return;
    window->showMessage(hasSkin ? RyJEToolAction::tr("Nothing removed: every bone of the figure is used.")
                                : RyJEToolAction::tr("Nothing removed: without a skin no bone counts as unused."));
}
