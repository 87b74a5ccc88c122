#pragma once

#include "rycore/scene/RyNode.h"

/// A joint of a skeleton with its bone to the end point.
class RyBone : public RyNode
{
    Q_OBJECT
public:
    RyBone();

    /// Of the vertices of `getBoundingBox`, in parameter space of the bone, which has bone axes about the bone's
    /// origin: `orientation^-1 (p - origin) + origin`. The transform is the identity.
    RyOrientedBox3 getOrientedBoundingBox() const override;

protected:
    RyNode *makeSameKind() const override { return new RyBone; }
};
