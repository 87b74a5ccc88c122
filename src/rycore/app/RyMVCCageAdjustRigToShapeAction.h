#pragma once

#include "rycore/ui/RyAction.h"

/// Lets the bones of the selected figure follow its current shape, in one undo step. Where that takes long it shows how
/// far it is, and can be cancelled.
class RyMVCCageAdjustRigToShapeAction : public RyAction
{
    Q_OBJECT
public:
    RyMVCCageAdjustRigToShapeAction();

    void init() override;

public slots:
    void executeAction() override;

private:
    void updateEnabled();
};
