#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

// Actions that make figures of props and props of figures. What they do is one undo step of the host.

class RyJEConvertPropToFigureAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEConvertPropToFigureAction();

public slots:
    void executeAction() override;
};

class RyJEConvertFigureToPropAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEConvertFigureToPropAction();

public slots:
    void executeAction() override;
};
