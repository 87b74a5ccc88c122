#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

// Check actions, each bound to one flag of the tool.

class RyJETogglePropagateTranslationAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJETogglePropagateTranslationAction();

    void init() override;

protected slots:
    void toggleAction(bool onOff);
    void updateActionState(bool onOff);
};

class RyJEToggleViewBoneCreationAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEToggleViewBoneCreationAction();

    void init() override;

protected slots:
    void toggleAction(bool onOff);
    void updateActionState(bool onOff);
};

class RyJEToggleAutoAlignNodeAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEToggleAutoAlignNodeAction();

    void init() override;

protected slots:
    void toggleAction(bool onOff);
    void updateActionState(bool onOff);
};

class RyJEToggleAutoSnapEndPointsAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEToggleAutoSnapEndPointsAction();

    void init() override;

protected slots:
    void toggleAction(bool onOff);
    void updateActionState(bool onOff);
};
