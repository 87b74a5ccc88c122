#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

// Actions that make bones and figures.

class RyJECreateBoneAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJECreateBoneAction() : RyJEToolAction(staticMetaObject) {}

public slots:
    void executeAction() override;
    void selectionChanged() { followRule(); }
};

class RyJECreateSiblingBoneAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJECreateSiblingBoneAction() : RyJEToolAction(staticMetaObject) {}

public slots:
    void executeAction() override;
    void selectionChanged() { followRule(); }
};

class RyJEDuplicateBonesAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEDuplicateBonesAction() : RyJEToolAction(staticMetaObject) {}

public slots:
    void executeAction() override;
    void selectionChanged() { followRule(); }
};

class RyJESplitBoneAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJESplitBoneAction() : RyJEToolAction(staticMetaObject) {}

public slots:
    void executeAction() override;
    void selectionChanged() { followRule(); }
};

class RyJECreateControlBonesAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJECreateControlBonesAction() : RyJEToolAction(staticMetaObject) {}

public slots:
    void executeAction() override;
};
