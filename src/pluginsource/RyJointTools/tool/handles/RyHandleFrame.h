#pragma once

#include "rycore/math/RyLine3.h"
#include "rycore/math/RyMatrix4.h"
#include "rycore/math/RyQuat.h"
#include "rycore/math/RyVec3.h"

class RyNode;
struct RyParamSpace;

/// Where handles stand in the world. It is worked out here alone, for drawing them, for the pick pass and for dragging
/// them: what is drawn begins at the anchor and runs along the axes, and drags measure from the anchor along the same
/// lines. A scale that shears turns no axis: drags along an axis follow the rotation alone, and so does the drawing.
struct RyHandleFrame
{
    RyVec3 anchor;
    RyVec3 axes[3]; // unit vectors, at right angles to each other unless a scale shears
    // Of one unit of what is drawn, along each axis; below zero where a node's scale mirrors. What takes part in every
    // scale has its axes mirrored instead, and lengths of zero and more.
    float lengths[3] = {1.0f, 1.0f, 1.0f};
    RyVec3 planeNormal; // of the plane that a handle without an axis moves in

    /// Of a node's origin: the node's world position, with the axes of the parent's world rotation (those of the world
    /// without a parent), since an origin moves in the space that the parent's pose gives it. The lengths are those of
    /// the node's world scale. The plane faces the camera, whose world rotation is `viewRotation`.
    static RyHandleFrame ofOrigin(const RyNode &node, const RyQuat &viewRotation = RyQuat());
    /// Of a node's end point: the posed end point, with the axes of the node's own world rotation; the rest as above.
    static RyHandleFrame ofEndPoint(const RyNode &node, const RyQuat &viewRotation = RyQuat());

    // --- Of a parameter of a joint, in its space. What is drawn there takes part in every scale, and so do the axes.

    /// Of the rings and cubes of a sphere: its centre, with the directions of its own axes and half its extent along
    /// each.
    static RyHandleFrame ofSphere(const RyParamSpace &space, const RyMatrix4 &sphere);
    /// Of the arrows that move a sphere: its centre, with the axes of the space; the lengths are those of the arrows, a
    /// third of the sphere's least radius there.
    static RyHandleFrame ofSphereArrows(const RyParamSpace &space, const RyMatrix4 &sphere);
    /// Of the ends of zones: the driver's origin, with the axes of the space and the length of one unit along each.
    static RyHandleFrame ofZones(const RyParamSpace &space);
    /// Of bend angles: the driver's origin, with the axes of the space as rotations alone turn them; rays have no
    /// scale.
    static RyHandleFrame ofAngles(const RyParamSpace &space);

    /// From the space in which the handles' shapes are given, with the anchor at zero, to the world.
    RyMatrix4 toWorld() const;
    /// In the plane across an axis: where angles about it are counted from, and where a quarter turn lies.
    struct AngleReferences
    {
        RyVec3 zero;
        RyVec3 quarter;
    };
    AngleReferences angleReferences(int axis) const;
    /// Along which general scale is dragged: equally far from all axes. A unit vector.
    RyVec3 diagonal() const;
    /// From the anchor to the place on an axis that is nearest to a ray of the world.
    RyVec3 wayAlongAxis(int axis, const RyLine3 &ray) const { return wayAlong(axes[axis], ray); }
    /// The same on the line through the anchor along a unit vector.
    RyVec3 wayAlong(const RyVec3 &direction, const RyLine3 &ray) const;
    /// Of the plane of the two other axes; not a unit vector.
    RyVec3 normalAcrossAxis(int axis) const { return axes[(axis + 1) % 3].cross(axes[(axis + 2) % 3]); }
    /// From the anchor to where a ray meets that plane; to the ray's origin when they are parallel.
    RyVec3 wayAcrossAxis(int axis, const RyLine3 &ray) const;
    /// From the anchor to where a ray of the world meets the plane; to the ray's origin when they are parallel.
    RyVec3 wayInPlane(const RyLine3 &ray) const;
};
