#pragma once

#include "rycore/ui/RyAction.h"

/// Puts the zones and spheres of the selected bones' joint parameters where the bones lie, in one undo step.
class RyFitZonesToBoneAction : public RyAction
{
    Q_OBJECT
public:
    RyFitZonesToBoneAction();

    void init() override;

public slots:
    void executeAction() override;

private:
    void updateEnabled();
};
