#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJERotationOrderAction.h"

// One action for each rotation order. The slots stand in each class, where the host finds them by name.

class RyJERotationOrderXYZAction : public RyJERotationOrderAction
{
    Q_OBJECT
public:
    RyJERotationOrderXYZAction() : RyJERotationOrderAction(staticMetaObject, RyRotationOrder::XYZ)
    {
        followSelection();
    }

public slots:
    void executeAction() override { setOrderOfPrimarySelection(); }
    void selectionChanged() { enableBy(isAnyNode); }
};

class RyJERotationOrderXZYAction : public RyJERotationOrderAction
{
    Q_OBJECT
public:
    RyJERotationOrderXZYAction() : RyJERotationOrderAction(staticMetaObject, RyRotationOrder::XZY)
    {
        followSelection();
    }

public slots:
    void executeAction() override { setOrderOfPrimarySelection(); }
    void selectionChanged() { enableBy(isAnyNode); }
};

class RyJERotationOrderYXZAction : public RyJERotationOrderAction
{
    Q_OBJECT
public:
    RyJERotationOrderYXZAction() : RyJERotationOrderAction(staticMetaObject, RyRotationOrder::YXZ)
    {
        followSelection();
    }

public slots:
    void executeAction() override { setOrderOfPrimarySelection(); }
    void selectionChanged() { enableBy(isAnyNode); }
};

class RyJERotationOrderYZXAction : public RyJERotationOrderAction
{
    Q_OBJECT
public:
    RyJERotationOrderYZXAction() : RyJERotationOrderAction(staticMetaObject, RyRotationOrder::YZX)
    {
        followSelection();
    }

public slots:
    void executeAction() override { setOrderOfPrimarySelection(); }
    void selectionChanged() { enableBy(isAnyNode); }
};

class RyJERotationOrderZXYAction : public RyJERotationOrderAction
{
    Q_OBJECT
public:
    RyJERotationOrderZXYAction() : RyJERotationOrderAction(staticMetaObject, RyRotationOrder::ZXY)
    {
        followSelection();
    }

public slots:
    void executeAction() override { setOrderOfPrimarySelection(); }
    void selectionChanged() { enableBy(isAnyNode); }
};

class RyJERotationOrderZYXAction : public RyJERotationOrderAction
{
    Q_OBJECT
public:
    RyJERotationOrderZYXAction() : RyJERotationOrderAction(staticMetaObject, RyRotationOrder::ZYX)
    {
        followSelection();
    }

public slots:
    void executeAction() override { setOrderOfPrimarySelection(); }
    void selectionChanged() { enableBy(isAnyNode); }
};
