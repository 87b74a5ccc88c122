#pragma once

#include "rycore/math/RyVec3.h"

#include <QPointer>

#include <vector>

class RyNode;

/// Where a node's end point and the bones below it stood at one moment, in figure space. Placing them from there by a
/// total way, and not by small ways one after the other, keeps long drags free of drift.
class RyBranchPlacement
{
public:
    explicit RyBranchPlacement(RyNode *node);

    void moveEndPoint(const RyVec3 &way) const;
    /// Origins and end points of all bones below, parents first. Current values only.
    void moveDescendants(const RyVec3 &way) const;

private:
    struct Place
    {
        QPointer<RyNode> bone;
        RyVec3 origin;
        RyVec3 endPoint;
    };
    QPointer<RyNode> m_node;
    RyVec3 m_endPoint;
    std::vector<Place> m_descendants;
};

/// All bones below the node that share its skeleton, in pre-order. Bones of a figure that hangs on one of them live in
/// another figure space and are left out.
std::vector<RyNode *> bonesBelow(const RyNode *node);
