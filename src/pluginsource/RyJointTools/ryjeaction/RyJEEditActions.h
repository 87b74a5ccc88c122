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
