#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJERotationOrderAction.h"

// One action for each rotation order. The slots stand in each class, where the host finds them by name.

class RyJERotationOrderXYZAction : public RyJERotationOrderAction
{
    Q_OBJECT
public:
    RyJERotationOrderXYZAction()
        : RyJERotationOrderAction(staticMetaObject, RyRotationOrder::XYZ,
                                  QT_TRANSLATE_NOOP("RyJEToolAction", "Rotation Order XYZ"))
    {}

public slots:
    void executeAction() override { setOrderOfPrimarySelection(); }
    void selectionChanged() { followRule(); }
};

class RyJERotationOrderXZYAction : public RyJERotationOrderAction
{
    Q_OBJECT
public:
    RyJERotationOrderXZYAction()
        : RyJERotationOrderAction(staticMetaObject, RyRotationOrder::XZY,
                                  QT_TRANSLATE_NOOP("RyJEToolAction", "Rotation Order XZY"))
    {}

public slots:
    void executeAction() override { setOrderOfPrimarySelection(); }
    void selectionChanged() { followRule(); }
};

class RyJERotationOrderYXZAction : public RyJERotationOrderAction
{
    Q_OBJECT
public:
    RyJERotationOrderYXZAction()
        : RyJERotationOrderAction(staticMetaObject, RyRotationOrder::YXZ,
                                  QT_TRANSLATE_NOOP("RyJEToolAction", "Rotation Order YXZ"))
    {}

public slots:
    void executeAction() override { setOrderOfPrimarySelection(); }
    void selectionChanged() { followRule(); }
};

class RyJERotationOrderYZXAction : public RyJERotationOrderAction
{
    Q_OBJECT
public:
    RyJERotationOrderYZXAction()
        : RyJERotationOrderAction(staticMetaObject, RyRotationOrder::YZX,
                                  QT_TRANSLATE_NOOP("RyJEToolAction", "Rotation Order YZX"))
    {}

public slots:
    void executeAction() override { setOrderOfPrimarySelection(); }
    void selectionChanged() { followRule(); }
};

class RyJERotationOrderZXYAction : public RyJERotationOrderAction
{
    Q_OBJECT
public:
    RyJERotationOrderZXYAction()
        : RyJERotationOrderAction(staticMetaObject, RyRotationOrder::ZXY,
                                  QT_TRANSLATE_NOOP("RyJEToolAction", "Rotation Order ZXY"))
    {}

public slots:
    void executeAction() override { setOrderOfPrimarySelection(); }
    void selectionChanged() { followRule(); }
};

class RyJERotationOrderZYXAction : public RyJERotationOrderAction
{
    Q_OBJECT
public:
    RyJERotationOrderZYXAction()
        : RyJERotationOrderAction(staticMetaObject, RyRotationOrder::ZYX,
                                  QT_TRANSLATE_NOOP("RyJEToolAction", "Rotation Order ZYX"))
    {}

public slots:
    void executeAction() override { setOrderOfPrimarySelection(); }
    void selectionChanged() { followRule(); }
};
