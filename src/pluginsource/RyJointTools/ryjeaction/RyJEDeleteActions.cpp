#include "pluginsource/RyJointTools/ryjeaction/RyJEDeleteActions.h"

#include "pluginsource/RyJointTools/operations/deleteBone.h"
#include "pluginsource/RyJointTools/ryjeaction/selectionRules.h"
#include "pluginsource/RyJointTools/ryjeaction/warnOfSelection.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackLock.h"

RyJEDeleteBoneAction::RyJEDeleteBoneAction() : RyJEToolAction(staticMetaObject)
{
    followSelection();
}

void RyJEDeleteBoneAction::selectionChanged()
{
    enableBy(isBone);
}

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

RyJEDeleteUnusedBonesAction::RyJEDeleteUnusedBonesAction() : RyJEToolAction(staticMetaObject) {}
