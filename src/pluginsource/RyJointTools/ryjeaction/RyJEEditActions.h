#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

// Actions that rework skeletons and figures.

class RyJEConvertPropToFigureAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEConvertPropToFigureAction();
};

class RyJEConvertFigureToPropAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEConvertFigureToPropAction();
};

class RyJERenameNodeAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJERenameNodeAction();
};

class RyJEReparentBoneAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEReparentBoneAction();
};

class RyJEMirrorAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEMirrorAction();
};

class RyJEBakeRotationsAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEBakeRotationsAction();
};

class RyJETransferWSRiggingAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJETransferWSRiggingAction();
};

class RyJESelectedNodesAttributesEditAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJESelectedNodesAttributesEditAction();
};
