#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToggleAction.h"

// Check actions, each bound to one flag of the tool. The slots stand in each class, where the host finds them by name.

class RyJETogglePropagateTranslationAction : public RyJEToggleAction
{
    Q_OBJECT
public:
    RyJETogglePropagateTranslationAction();

protected slots:
    void toggleAction(bool onOff) override { setToolFlag(onOff); }
    void updateActionState(bool onOff) override { showFlag(onOff); }
};

class RyJEToggleViewBoneCreationAction : public RyJEToggleAction
{
    Q_OBJECT
public:
    RyJEToggleViewBoneCreationAction();

protected slots:
    void toggleAction(bool onOff) override { setToolFlag(onOff); }
    void updateActionState(bool onOff) override { showFlag(onOff); }
};

class RyJEToggleAutoAlignNodeAction : public RyJEToggleAction
{
    Q_OBJECT
public:
    RyJEToggleAutoAlignNodeAction();

protected slots:
    void toggleAction(bool onOff) override { setToolFlag(onOff); }
    void updateActionState(bool onOff) override { showFlag(onOff); }
};

class RyJEToggleAutoSnapEndPointsAction : public RyJEToggleAction
{
    Q_OBJECT
public:
    RyJEToggleAutoSnapEndPointsAction();

protected slots:
    void toggleAction(bool onOff) override { setToolFlag(onOff); }
    void updateActionState(bool onOff) override { showFlag(onOff); }
};
