#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

// Actions that straighten a rigging.

class RyJEAlignNodeAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEAlignNodeAction();
};

class RyJEAlignAllBonesAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEAlignAllBonesAction();
};

class RyJESnapCenterPointAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJESnapCenterPointAction();
};

class RyJESnapEndPointAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJESnapEndPointAction();
};
