#pragma once

#include "rycore/ui/RyAction.h"

/// Lets the bones of the selected figure follow its current shape. Disabled, since no shape differs from its base.
class RyMVCCageAdjustRigToShapeAction : public RyAction
{
    Q_OBJECT
public:
    RyMVCCageAdjustRigToShapeAction();
};
