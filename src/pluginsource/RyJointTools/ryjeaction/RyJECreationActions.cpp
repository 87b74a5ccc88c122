#include "pluginsource/RyJointTools/ryjeaction/RyJECreationActions.h"

#include "pluginsource/RyJointTools/operations/copyBone.h"
#include "pluginsource/RyJointTools/ryjeaction/selectionRules.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"

RyJECreateBoneAction::RyJECreateBoneAction() : RyJEToolAction(staticMetaObject) {}

RyJECreateSiblingBoneAction::RyJECreateSiblingBoneAction() : RyJEToolAction(staticMetaObject)
{
    followSelection();
}

void RyJECreateSiblingBoneAction::selectionChanged()
{
    enableBy(isBoneOfFigure);
}

void RyJECreateSiblingBoneAction::executeAction()
{
    createSiblingBone(qobject_cast<RyBone *>(ryScene()->getPrimarySelection()));
}

RyJEDuplicateBonesAction::RyJEDuplicateBonesAction() : RyJEToolAction(staticMetaObject) {}

RyJESplitBoneAction::RyJESplitBoneAction() : RyJEToolAction(staticMetaObject)
{
    followSelection();
}

void RyJESplitBoneAction::selectionChanged()
{
    enableBy(isAnyNode);
}

void RyJESplitBoneAction::executeAction()
{
    splitBone(qobject_cast<RyBone *>(ryScene()->getPrimarySelection()));
}

RyJECreateDonorFigureAction::RyJECreateDonorFigureAction() : RyJEToolAction(staticMetaObject) {}

RyJECreateControlBonesAction::RyJECreateControlBonesAction() : RyJEToolAction(staticMetaObject) {}
