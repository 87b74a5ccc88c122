#pragma once

#include "rycore/scene/RyNode.h"

/// A joint of a skeleton with its bone to the end point.
class RyBone : public RyNode
{
    Q_OBJECT
public:
    RyBone();

protected:
    RyNode *makeSameKind() const override { return new RyBone; }
};
