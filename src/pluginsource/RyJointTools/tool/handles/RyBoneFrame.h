#pragma once

#include "rycore/math/RyVec3.h"

class RyBone;
class RyMatrix4;

/// Where the shape of a bone stands in the world: an octahedron along the first axis of its rotation order, whose waist
/// is a tenth of its length away from the origin and as wide. For an aligned bone the tip is the posed end point.
struct RyBoneFrame
{
    RyVec3 origin;
    RyVec3 along;    // to the tip
    RyVec3 sides[2]; // from the middle of the waist to its corners, along the two other axes
    int axes[3];     // of the rotation order: first the one that the bone points along

    /// The bone as it is.
    static RyBoneFrame ofBone(const RyBone &bone);
    /// The bone at its default place, for its default world transform.
    static RyBoneFrame ofDefault(const RyBone &bone, const RyMatrix4 &defaultTransform);

    RyVec3 tip() const { return origin + along; }
    RyVec3 waistMiddle() const { return origin + along * 0.1f; }
};
