#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

// Actions that straighten a rigging.

class RyJEAlignNodeAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEAlignNodeAction() : RyJEToolAction(staticMetaObject) {}

public slots:
    void executeAction() override;
    void selectionChanged() { followRule(); }
};

class RyJEAlignAllBonesAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEAlignAllBonesAction() : RyJEToolAction(staticMetaObject) {}

public slots:
    void executeAction() override;
    void selectionChanged() { followRule(); }
};

class RyJESnapCenterPointAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJESnapCenterPointAction() : RyJEToolAction(staticMetaObject) {}

public slots:
    void executeAction() override;
    void selectionChanged() { followRule(); }
};

class RyJESnapEndPointAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJESnapEndPointAction() : RyJEToolAction(staticMetaObject) {}

public slots:
    void executeAction() override;
    void selectionChanged() { followRule(); }
};
