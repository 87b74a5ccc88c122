#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

// Actions that make figures of props and props of figures. What they do is one undo step of the host.

class RyJEConvertPropToFigureAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEConvertPropToFigureAction() : RyJEToolAction(staticMetaObject) {}

public slots:
    void executeAction() override;
};

class RyJEConvertFigureToPropAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEConvertFigureToPropAction() : RyJEToolAction(staticMetaObject) {}

public slots:
    void executeAction() override;
};
