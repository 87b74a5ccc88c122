#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

class RyJointEditorTool;

/// A switch of the tool that a check action shows.
struct RyToolFlag
{
    bool (*get)(RyJointEditorTool *tool);
    void (*set)(RyJointEditorTool *tool, bool onOff);
};

/// Check action bound to one flag of the tool. The flag is the tool's: the action takes it over when the host
/// initialises it and whenever the tool says that its flags changed, and pushes its check mark there when it is
/// toggled. Without a tool it changes its own check mark only. No class of its own for the meta-object system.
class RyJEToggleAction : public RyJEToolAction
{
public:
    void init() override;
    bool leavesSceneAlone() const override { return true; }

protected:
    RyJEToggleAction(const QMetaObject &actionClass, const RyToolFlag &flag);

    /// Called with the signal toggled(bool).
    virtual void toggleAction(bool onOff) = 0;
    virtual void updateActionState(bool onOff) = 0;
    void setToolFlag(bool onOff) const;
    /// Shows the flag without telling the tool.
    void showFlag(bool onOff);

private:
    void takeFlag();

    RyToolFlag m_flag;
};
