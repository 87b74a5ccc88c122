#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

// One action for each rotation order.

class RyJERotationOrderXYZAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJERotationOrderXYZAction();
};

class RyJERotationOrderXZYAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJERotationOrderXZYAction();
};

class RyJERotationOrderYXZAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJERotationOrderYXZAction();
};

class RyJERotationOrderYZXAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJERotationOrderYZXAction();
};

class RyJERotationOrderZXYAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJERotationOrderZXYAction();
};

class RyJERotationOrderZYXAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJERotationOrderZYXAction();
};
