#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

// Actions that remove bones.

class RyJEDeleteBoneAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEDeleteBoneAction();

public slots:
    void executeAction() override;
    void selectionChanged();
};

class RyJEDeleteUnusedBonesAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEDeleteUnusedBonesAction();

public slots:
    void executeAction() override;
    void selectionChanged();
};
