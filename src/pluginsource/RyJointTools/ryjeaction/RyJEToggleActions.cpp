#include "pluginsource/RyJointTools/ryjeaction/RyJEToggleActions.h"

#include "pluginsource/RyJointTools/ryjeaction/findJointEditorTool.h"
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include <QSignalBlocker>

// The flags are the tool's. An action pushes its check mark there when it is toggled and takes the flag over once, when
// the host initialises it; without a tool it changes its own check mark only.

RyJETogglePropagateTranslationAction::RyJETogglePropagateTranslationAction() : RyJEToolAction(staticMetaObject)
{
    setEnabled(true);
    connect(this, SIGNAL(toggled(bool)), this, SLOT(toggleAction(bool)));
}

void RyJETogglePropagateTranslationAction::init()
{
    RyJEToolAction::init();
    if (RyJointEditorTool *tool = findJointEditorTool()) {
        const bool onOff = tool->propagateTranslation();
        toggleAction(onOff);
        updateActionState(onOff);
    }
}

void RyJETogglePropagateTranslationAction::toggleAction(bool onOff)
{
    if (RyJointEditorTool *tool = findJointEditorTool())
        tool->setPropagateTranslation(onOff);
}

void RyJETogglePropagateTranslationAction::updateActionState(bool onOff)
{
    const QSignalBlocker blocker(this);
    setChecked(onOff);
}

RyJEToggleViewBoneCreationAction::RyJEToggleViewBoneCreationAction() : RyJEToolAction(staticMetaObject)
{
    setEnabled(true);
    connect(this, SIGNAL(toggled(bool)), this, SLOT(toggleAction(bool)));
}

void RyJEToggleViewBoneCreationAction::init()
{
    RyJEToolAction::init();
    if (RyJointEditorTool *tool = findJointEditorTool()) {
        const bool onOff = tool->boneCreationActive();
        toggleAction(onOff);
        updateActionState(onOff);
    }
}

void RyJEToggleViewBoneCreationAction::toggleAction(bool onOff)
{
    if (RyJointEditorTool *tool = findJointEditorTool())
        tool->setBoneCreationActive(onOff);
}

void RyJEToggleViewBoneCreationAction::updateActionState(bool onOff)
{
    const QSignalBlocker blocker(this);
    setChecked(onOff);
}

RyJEToggleAutoAlignNodeAction::RyJEToggleAutoAlignNodeAction() : RyJEToolAction(staticMetaObject)
{
    setEnabled(true);
    connect(this, SIGNAL(toggled(bool)), this, SLOT(toggleAction(bool)));
}

void RyJEToggleAutoAlignNodeAction::init()
{
    RyJEToolAction::init();
    if (RyJointEditorTool *tool = findJointEditorTool()) {
        const bool onOff = tool->autoAlign();
        toggleAction(onOff);
        updateActionState(onOff);
    }
}

void RyJEToggleAutoAlignNodeAction::toggleAction(bool onOff)
{
    if (RyJointEditorTool *tool = findJointEditorTool())
        tool->setAutoAlign(onOff);
}

void RyJEToggleAutoAlignNodeAction::updateActionState(bool onOff)
{
    const QSignalBlocker blocker(this);
    setChecked(onOff);
}

RyJEToggleAutoSnapEndPointsAction::RyJEToggleAutoSnapEndPointsAction() : RyJEToolAction(staticMetaObject)
{
    setEnabled(true);
    connect(this, SIGNAL(toggled(bool)), this, SLOT(toggleAction(bool)));
}

void RyJEToggleAutoSnapEndPointsAction::init()
{
    RyJEToolAction::init();
    if (RyJointEditorTool *tool = findJointEditorTool()) {
        const bool onOff = tool->autoSnapEndPoints();
        toggleAction(onOff);
        updateActionState(onOff);
    }
}

void RyJEToggleAutoSnapEndPointsAction::toggleAction(bool onOff)
{
    if (RyJointEditorTool *tool = findJointEditorTool())
        tool->setAutoSnapEndPoints(onOff);
}

void RyJEToggleAutoSnapEndPointsAction::updateActionState(bool onOff)
{
    const QSignalBlocker blocker(this);
    setChecked(onOff);
}
