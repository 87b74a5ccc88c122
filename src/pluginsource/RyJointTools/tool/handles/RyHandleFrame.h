#pragma once

#include "rycore/math/RyLine3.h"
#include "rycore/math/RyMatrix4.h"
#include "rycore/math/RyQuat.h"
#include "rycore/math/RyVec3.h"

class RyNode;

/// Where handles stand in the world. It is worked out here alone, for drawing them, for the pick pass and for dragging
/// them: what is drawn begins at the anchor and runs along the axes, and drags measure from the anchor along the same
/// lines. A scale that shears turns no axis: drags along an axis follow the rotation alone, and so does the drawing.
struct RyHandleFrame
{
    RyVec3 anchor;
    RyVec3 axes[3];                        // unit vectors, at right angles to each other
    float lengths[3] = {1.0f, 1.0f, 1.0f}; // of one unit of what is drawn, along each axis; below zero where mirrored
    RyVec3 planeNormal;                    // of the plane that a handle without an axis moves in

    /// Of a node's origin: the node's world position, with the axes of the parent's world rotation (those of the world
    /// without a parent), since an origin moves in the space that the parent's pose gives it. The lengths are those of
    /// the node's world scale. The plane faces the camera, whose world rotation is `viewRotation`.
    static RyHandleFrame ofOrigin(const RyNode &node, const RyQuat &viewRotation = RyQuat());
    /// Of a node's end point: the posed end point, with the axes of the node's own world rotation; the rest as above.
    static RyHandleFrame ofEndPoint(const RyNode &node, const RyQuat &viewRotation = RyQuat());

    /// From the space in which the handles' shapes are given, with the anchor at zero, to the world.
    RyMatrix4 toWorld() const;
    /// From the anchor to the place on an axis that is nearest to a ray of the world.
    RyVec3 wayAlongAxis(int axis, const RyLine3 &ray) const;
    /// From the anchor to where a ray of the world meets the plane; to the ray's origin when they are parallel.
    RyVec3 wayInPlane(const RyLine3 &ray) const;
};
