#include "pluginsource/RyJointTools/ryjeaction/RyJEToggleActions.h"

#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

RyJETogglePropagateTranslationAction::RyJETogglePropagateTranslationAction()
    : RyJEToggleAction(staticMetaObject,
                       {[](RyJointEditorTool *tool) { return tool->propagateTranslation(); },
                        [](RyJointEditorTool *tool, bool onOff) { tool->setPropagateTranslation(onOff); }})
{
    connect(this, SIGNAL(toggled(bool)), this, SLOT(toggleAction(bool)));
}

RyJEToggleViewBoneCreationAction::RyJEToggleViewBoneCreationAction()
    : RyJEToggleAction(staticMetaObject,
                       {[](RyJointEditorTool *tool) { return tool->boneCreationActive(); },
                        [](RyJointEditorTool *tool, bool onOff) { tool->setBoneCreationActive(onOff); }})
{
    connect(this, SIGNAL(toggled(bool)), this, SLOT(toggleAction(bool)));
}

RyJEToggleAutoAlignNodeAction::RyJEToggleAutoAlignNodeAction()
    : RyJEToggleAction(staticMetaObject, {[](RyJointEditorTool *tool) { return tool->autoAlign(); },
                                          [](RyJointEditorTool *tool, bool onOff) { tool->setAutoAlign(onOff); }})
{
    connect(this, SIGNAL(toggled(bool)), this, SLOT(toggleAction(bool)));
}

RyJEToggleAutoSnapEndPointsAction::RyJEToggleAutoSnapEndPointsAction()
    : RyJEToggleAction(staticMetaObject,
                       {[](RyJointEditorTool *tool) { return tool->autoSnapEndPoints(); },
                        [](RyJointEditorTool *tool, bool onOff) { tool->setAutoSnapEndPoints(onOff); }})
{
    connect(this, SIGNAL(toggled(bool)), this, SLOT(toggleAction(bool)));
}
