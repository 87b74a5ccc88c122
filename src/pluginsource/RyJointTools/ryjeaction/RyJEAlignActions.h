#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

// Actions that straighten a rigging.

class RyJEAlignNodeAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEAlignNodeAction();

public slots:
    void executeAction() override;
    void selectionChanged();
};

class RyJEAlignAllBonesAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEAlignAllBonesAction();

public slots:
    void executeAction() override;
    void selectionChanged();
};

class RyJESnapCenterPointAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJESnapCenterPointAction();

public slots:
    void executeAction() override;
    void selectionChanged();
};

class RyJESnapEndPointAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJESnapEndPointAction();

public slots:
    void executeAction() override;
    void selectionChanged();
};
