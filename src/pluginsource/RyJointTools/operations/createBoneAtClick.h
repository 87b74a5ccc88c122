#pragma once

class RyBone;
class RyLine3;
class RyNode;
class RyQuat;

/// Adds a bone as the last child of a node of a skeleton: it starts at the node's end point, takes over its orientation
/// and rotation order, and ends where the ray of the click meets the plane through the world origin that faces the
/// camera, however far from it the node is. That point of the world is taken as one of figure space. A figure with a
/// skin gets a binding for the bone, with maps of the kinds that the skin has and no weights; a parametric figure gets
/// a joint for it. Records into an undo hold that is open, but opens none.
///
/// Returns the new bone; null for null and for a node without a skeleton.
RyBone *createBoneAtClick(RyNode *node, const RyLine3 &ray, const RyQuat &cameraRotation);
