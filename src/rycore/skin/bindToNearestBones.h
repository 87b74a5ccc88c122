#pragma once

class RySkinBinding;

/// Gives every vertex of the skin's mesh weights of the bones it lies at, in place of those it had.
///
/// A vertex goes to the nearest bone whose joint it has passed: the plane through the bone's center point that halves
/// the angle to its parent. Bones without a parent in the skin have no such plane. The weights are then spread along
/// the surface, over about the vertex' distance to its bone, so that a thick limb bends softer than a finger. At most
/// four bones move a vertex; its weights sum to full weight. Rest mesh and current rigging values are what counts, the
/// pose is not.
///
/// No bone has its weights from another one afterwards (RyBone::getWeightGivers). All maps that a binding has get the
/// same weights; a binding without any gets a general map or local and scale maps, as its skin has them. Undoable where
/// a hold is open. False, and nothing done, without a mesh of facets or without a bone.
bool bindToNearestBones(RySkinBinding &skin);
