#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

// Actions that memorize and restore riggings.

class RyJEMemorizeFigureRiggingPropertiesAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEMemorizeFigureRiggingPropertiesAction() : RyJEToolAction(staticMetaObject) {}
};

class RyJEMemorizeNodeRiggingPropertiesAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEMemorizeNodeRiggingPropertiesAction() : RyJEToolAction(staticMetaObject) {}
};

class RyJERestoreFigureRiggingPropertiesAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJERestoreFigureRiggingPropertiesAction() : RyJEToolAction(staticMetaObject) {}
};

class RyJERestoreNodeRiggingPropertiesAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJERestoreNodeRiggingPropertiesAction() : RyJEToolAction(staticMetaObject) {}
};
