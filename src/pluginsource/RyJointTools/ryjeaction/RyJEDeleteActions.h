#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

// Actions that remove bones.

class RyJEDeleteBoneAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEDeleteBoneAction();
};

class RyJEDeleteUnusedBonesAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEDeleteUnusedBonesAction();
};
