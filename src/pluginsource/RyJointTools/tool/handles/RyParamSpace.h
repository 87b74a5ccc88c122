#pragma once

#include "rycore/math/RyMatrix4.h"
#include "rycore/math/RyVec3.h"

class RyLegacyJointParam;
class RyNode;
class RyQuat;

/// Where the values of a joint parameter stand in the world: parameter space has the bone axes of the driver about its
/// origin, and goes with the driver's pose. Centimetres.
struct RyParamSpace
{
    RyVec3 origin;     // of the driver, in figure space: values are measured from there
    RyMatrix4 toWorld; // from bone axes about that origin
    RyVec3 axes[3];    // unit vectors of the bone axes in the world, by rotations alone

    /// Of a parameter that a node has; where its driver is gone the node itself stands for it.
    static RyParamSpace of(const RyLegacyJointParam &param, const RyNode &node);

    RyVec3 mapPoint(const RyVec3 &value) const { return toWorld.multVecMatrix(value - origin); }
    /// From the unit sphere to the world, for the matrix of a sphere.
    RyMatrix4 sphereToWorld(const RyMatrix4 &sphere) const;
};
