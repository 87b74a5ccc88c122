#pragma once

#include "pluginsource/RyJointTools/operations/RyParamPlacement.h"

#include <QPointer>

#include <vector>

class RyNode;

/// Where a node, its parameters and the bones below it stood at one moment, in figure space. Placing them from there by
/// a total way, and not by small ways one after the other, keeps long drags free of drift.
class RyBranchPlacement
{
public:
    /// `withParams`: parameters of joints go along.
    explicit RyBranchPlacement(RyNode *node, bool withParams = true);

    /// The end point and the parameters of the node, whose origin has moved.
    void followOrigin(const RyVec3 &way) const;
    /// Origins, end points and parameters of all bones below, parents first. Current values only.
    void moveDescendants(const RyVec3 &way) const;

private:
    struct Place
    {
        Place(RyNode *node, bool withParams);
        void followOrigin(const RyVec3 &way) const;

        QPointer<RyNode> node;
        RyVec3 origin;
        RyVec3 endPoint;
        std::vector<RyParamPlacement> params;
    };
    Place m_place;
    std::vector<Place> m_descendants;
};

/// All bones below the node that share its skeleton, in pre-order. Bones of a figure that hangs on one of them live in
/// another figure space and are left out.
std::vector<RyNode *> bonesBelow(const RyNode *node);
