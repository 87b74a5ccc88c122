#pragma once

#include "rycore/ui/RyViewToolAction.h"

/// Activates the joint editor tool.
class RyJointEditorToolAction : public RyViewToolAction
{
    Q_OBJECT
public:
    RyJointEditorToolAction();

    QKeySequence getDefaultAccel() const override;
};
