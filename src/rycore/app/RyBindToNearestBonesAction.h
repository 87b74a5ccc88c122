#pragma once

#include "rycore/ui/RyAction.h"

/// Weighs the vertices of the selected figure by the bones they lie at, in one undo step.
class RyBindToNearestBonesAction : public RyAction
{
    Q_OBJECT
public:
    RyBindToNearestBonesAction();

    void init() override;

public slots:
    void executeAction() override;

private:
    void updateEnabled();
};
