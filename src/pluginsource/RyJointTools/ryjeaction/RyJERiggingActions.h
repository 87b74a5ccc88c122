#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

// Actions that memorize and restore riggings.

class RyJEMemorizeFigureRiggingPropertiesAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEMemorizeFigureRiggingPropertiesAction();
};

class RyJEMemorizeNodeRiggingPropertiesAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEMemorizeNodeRiggingPropertiesAction();
};

class RyJERestoreFigureRiggingPropertiesAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJERestoreFigureRiggingPropertiesAction();
};

class RyJERestoreNodeRiggingPropertiesAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJERestoreNodeRiggingPropertiesAction();
};
