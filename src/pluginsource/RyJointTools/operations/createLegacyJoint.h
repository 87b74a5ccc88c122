#pragma once

class RyBone;
class RyLegacyJoint;
class RyNode;

/// Gives a bone of a parametric figure its joint (`makeJoint`), or fills the one that it has, with new parameters on it
/// and on the joint of the parent. The bone must hang in its skeleton. Records into an undo hold that is open, but
/// opens none.
///
/// Returns the joint; null, with nothing changed, without a bone, a parametric figure with an object, or a joint.
RyLegacyJoint *createLegacyJoint(RyBone *bone, RyNode *parent, bool makeJoint, bool unused);
