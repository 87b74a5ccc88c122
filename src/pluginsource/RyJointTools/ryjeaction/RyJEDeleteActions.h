#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

// Actions that remove bones.

class RyJEDeleteBoneAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEDeleteBoneAction() : RyJEToolAction(staticMetaObject) {}

public slots:
    void executeAction() override;
    void selectionChanged() { followRule(); }
};

class RyJEDeleteUnusedBonesAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEDeleteUnusedBonesAction() : RyJEToolAction(staticMetaObject) {}

public slots:
    void executeAction() override;
    void selectionChanged() { followRule(); }
};
