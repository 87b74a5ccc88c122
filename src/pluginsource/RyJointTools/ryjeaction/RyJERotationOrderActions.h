#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

// One action for each rotation order.

class RyJERotationOrderXYZAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJERotationOrderXYZAction();

public slots:
    void executeAction() override;
    void selectionChanged();
};

class RyJERotationOrderXZYAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJERotationOrderXZYAction();

public slots:
    void executeAction() override;
    void selectionChanged();
};

class RyJERotationOrderYXZAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJERotationOrderYXZAction();

public slots:
    void executeAction() override;
    void selectionChanged();
};

class RyJERotationOrderYZXAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJERotationOrderYZXAction();

public slots:
    void executeAction() override;
    void selectionChanged();
};

class RyJERotationOrderZXYAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJERotationOrderZXYAction();

public slots:
    void executeAction() override;
    void selectionChanged();
};

class RyJERotationOrderZYXAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJERotationOrderZYXAction();

public slots:
    void executeAction() override;
    void selectionChanged();
};
