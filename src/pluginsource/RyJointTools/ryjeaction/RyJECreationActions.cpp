#include "pluginsource/RyJointTools/ryjeaction/RyJECreationActions.h"

#include "pluginsource/RyJointTools/dialogs/RyJEBoneCreationDlg.h"
#include "pluginsource/RyJointTools/operations/copyBone.h"
#include "pluginsource/RyJointTools/ryjeaction/findJointEditorTool.h"
#include "pluginsource/RyJointTools/ryjeaction/selectionRules.h"
#include "pluginsource/RyJointTools/ryjeaction/warnOfSelection.h"
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"

RyJECreateBoneAction::RyJECreateBoneAction() : RyJEToolAction(staticMetaObject)
{
    followSelection();
}

void RyJECreateBoneAction::selectionChanged()
{
    enableBy(isSkeletonOrBone);
}

void RyJECreateBoneAction::executeAction()
{
    RyJointEditorTool *tool = findJointEditorTool();
    if (!tool)
        return;
    if (!tool->currentNode()) {
        informOfSelection(RyJEToolAction::tr("A skeleton or bone must be selected to continue."));
        return;
    }
    RyJEBoneCreationDlg(tool).exec();
}

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
