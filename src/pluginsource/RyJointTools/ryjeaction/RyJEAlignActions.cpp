#include "pluginsource/RyJointTools/ryjeaction/RyJEAlignActions.h"

#include "pluginsource/RyJointTools/operations/alignNode.h"
#include "pluginsource/RyJointTools/operations/snapPoints.h"
#include "pluginsource/RyJointTools/ryjeaction/selectionBoxes.h"

#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStackHold.h"

/// One undo step of an operation on the primary selection; none when the operation finds nothing to do.
static void runOnPrimarySelection(bool (*operation)(RyNode *), const QString &caption)
{
    RyNode *node = ryScene()->getPrimarySelection();
    if (!node) {
        warnOfSelection(RyJEToolAction::tr("A node in the scene must be selected to continue."));
        return;
    }
    RyUndoStackHold hold;
    if (operation(node))
        hold.accept(caption);
    else
        hold.cancel();
}

void RyJEAlignNodeAction::executeAction()
{
    runOnPrimarySelection(alignNode, text());
}

void RyJEAlignAllBonesAction::executeAction()
{
    const RyNode *node = ryScene()->getPrimarySelection();
    const RySkeleton *skeleton = node ? node->getSkeleton() : nullptr;
    if (!skeleton) {
        warnOfSelection(RyJEToolAction::tr("A figure in the scene must be selected to continue."));
        return;
    }
    RyUndoStackHold hold;
    if (alignAllBones(*skeleton))
        hold.accept(text());
    else
        hold.cancel();
}

void RyJESnapCenterPointAction::executeAction()
{
    runOnPrimarySelection(snapCenterPoint, text());
}

void RyJESnapEndPointAction::executeAction()
{
    runOnPrimarySelection(snapEndPoint, text());
}
