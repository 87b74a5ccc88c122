#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

// Actions that rework skeletons and figures.

class RyJEMirrorAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEMirrorAction() : RyJEToolAction(staticMetaObject) {}
};

class RyJEBakeRotationsAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEBakeRotationsAction() : RyJEToolAction(staticMetaObject) {}
};
