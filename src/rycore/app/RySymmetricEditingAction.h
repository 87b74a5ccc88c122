#pragma once

#include "rycore/ui/RyAction.h"

class RyNode;

/// Switches symmetric editing of the scene, and says in the status line where a bone has no opposite to follow.
class RySymmetricEditingAction : public RyAction
{
    Q_OBJECT
public:
    RySymmetricEditingAction();

    void init() override;
    bool leavesSceneAlone() const override { return true; }

private:
    void tellUnmatched(RyNode *node) const;
};
