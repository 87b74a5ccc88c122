#pragma once

#include "rycore/math/RyQuat.h"
#include "rycore/math/RyVec3.h"

class RyNode;

// How an edit of a node is carried on to what hangs below it. All write current values only, in figure space, within
// whatever undo hold is open; null nodes, axes other than 0 to 2 and ways of no length do nothing. `withParams` takes
// parameters of joints along with their bones: see moveParams.h.

/// The node's end point and the origins and end points of all bones below move by `way`, with the parameters of all.
void propagateTranslation(RyNode *node, const RyVec3 &way);
/// The same along one axis; with `recursive` the bones below go along, else the node's end point alone.
void propagateTranslation(RyNode *node, int axis, float way, bool recursive, bool withParams);
/// The orientations of all bones below are turned by `turn`, after their own, and the spheres of their parameters.
void propagateOrientation(RyNode *node, const RyQuat &turn);
/// Turns the node's end point about its origin, right-handed by `angle` radians about a figure axis, and its
/// orientation with it; with `recursive` all bones below turn about that origin too.
void propagateRotation(RyNode *node, int axis, float angle, bool recursive, bool withParams);
/// Turns a node about a point: origin, end point and orientation; with `recursive` its bone children too.
void propagateChildRotation(RyNode *node, int axis, float angle, bool recursive, bool withParams, const RyVec3 &center);
/// Scales the way from the node's origin to its end point along one axis; with `recursive` all bones below are scaled
/// from that origin. Of parameters the centres of spheres and the ends of zones are scaled, as points are.
void propagateScale(RyNode *node, int axis, float factor, bool recursive, bool withParams);
