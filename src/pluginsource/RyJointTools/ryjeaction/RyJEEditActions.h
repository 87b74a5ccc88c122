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

/// Leaves no step: older ones stay in the stack. What cannot be baked stays as it is, without a word.
class RyJEBakeRotationsAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEBakeRotationsAction() : RyJEToolAction(staticMetaObject) {}

public slots:
    void executeAction() override;
};
