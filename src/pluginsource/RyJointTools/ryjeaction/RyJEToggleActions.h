#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

// Check actions, each bound to one flag of the tool.

class RyJETogglePropagateTranslationAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJETogglePropagateTranslationAction();
};

class RyJEToggleViewBoneCreationAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEToggleViewBoneCreationAction();
};

class RyJEToggleAutoAlignNodeAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEToggleAutoAlignNodeAction();
};

class RyJEToggleAutoSnapEndPointsAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEToggleAutoSnapEndPointsAction();
};
