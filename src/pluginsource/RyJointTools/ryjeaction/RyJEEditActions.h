#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

// Actions that rework skeletons and figures.

/// Opens the options of mirroring; does nothing without the tool.
class RyJEMirrorAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEMirrorAction() : RyJEToolAction(staticMetaObject) {}

public slots:
    void executeAction() override;
};

class RyJEBakeRotationsAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEBakeRotationsAction() : RyJEToolAction(staticMetaObject) {}
};
