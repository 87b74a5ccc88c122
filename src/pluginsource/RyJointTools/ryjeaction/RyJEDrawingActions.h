#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

// How the tool draws.

/// Opens the tool's drawing options; does nothing without the tool.
class RyJECustomColorsAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJECustomColorsAction() : RyJEToolAction(staticMetaObject) {}
    bool leavesSceneAlone() const override { return true; }

public slots:
    void executeAction() override;
};
