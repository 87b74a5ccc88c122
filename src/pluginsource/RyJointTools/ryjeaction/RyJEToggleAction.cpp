#include "pluginsource/RyJointTools/ryjeaction/RyJEToggleAction.h"

#include "pluginsource/RyJointTools/ryjeaction/findJointEditorTool.h"
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include <QSignalBlocker>

RyJEToggleAction::RyJEToggleAction(const QMetaObject &actionClass, const RyToolFlag &flag)
    : RyJEToolAction(actionClass), m_flag(flag)
{}

void RyJEToggleAction::init()
{
    RyJEToolAction::init();
    RyJointEditorTool *tool = findJointEditorTool();
    if (!tool)
        return;
    connect(tool, &RyViewTool::optionsChanged, this, &RyJEToggleAction::takeFlag, Qt::UniqueConnection);
    const bool onOff = m_flag.get(tool);
    toggleAction(onOff);
    updateActionState(onOff);
}

void RyJEToggleAction::takeFlag()
{
    if (RyJointEditorTool *tool = findJointEditorTool())
        updateActionState(m_flag.get(tool));
}

void RyJEToggleAction::setToolFlag(bool onOff) const
{
    if (RyJointEditorTool *tool = findJointEditorTool())
        m_flag.set(tool, onOff);
}

void RyJEToggleAction::showFlag(bool onOff)
{
    const QSignalBlocker blocker(this);
    setChecked(onOff);
}
