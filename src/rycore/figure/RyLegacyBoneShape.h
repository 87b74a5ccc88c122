#pragma once

#include "rycore/math/RyMatrix4.h"
#include "rycore/math/RyQuat.h"
#include "rycore/math/RyVec3.h"

class RyBone;
class RyObject;

/// How a bone of a parametric figure stands at rest, for zones and spheres that are fitted to it.
struct RyLegacyBoneShape
{
    /// `object`: the one whose vertices the bone moves. Its face group counts where that object's figure pairs the bone
    /// with one.
    RyLegacyBoneShape(const RyBone &bone, const RyObject *object);

    /// About the box of the face group, by `share` of its diagonal; without a group about the bone's origin, by that
    /// share of its length. In parameter space of the bone.
    RyMatrix4 sphere(float share) const;

    // --- Between figure space and parameter space of the bone.
    RyVec3 toParameterSpace(const RyVec3 &point) const
    {
        return orientation.inverse().multVec(point - origin) + origin;
    }
    RyVec3 toFigureSpace(const RyVec3 &x) const { return orientation.multVec(x - origin) + origin; }

    RyVec3 origin; // figure space
    RyQuat orientation;
    RyVec3 way;          // from the origin to the end point, in bone axes
    RyVec3 sphereCenter; // in parameter space
    float sphereSize;
    float radius; // how far the surface is from the bone, about; a quarter of the length where no group tells
};
