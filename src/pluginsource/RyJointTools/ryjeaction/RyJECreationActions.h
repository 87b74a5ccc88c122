#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

// Actions that make bones and figures.

class RyJECreateBoneAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJECreateBoneAction();

public slots:
    void executeAction() override;
    void selectionChanged();
};

class RyJECreateSiblingBoneAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJECreateSiblingBoneAction();

public slots:
    void executeAction() override;
    void selectionChanged();
};

class RyJEDuplicateBonesAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEDuplicateBonesAction();

public slots:
    void executeAction() override;
    void selectionChanged();
};

class RyJESplitBoneAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJESplitBoneAction();

public slots:
    void executeAction() override;
    void selectionChanged();
};

class RyJECreateDonorFigureAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJECreateDonorFigureAction();
};

class RyJECreateControlBonesAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJECreateControlBonesAction();
};
