#pragma once

class RyBone;

namespace RyLegacyZoneFit {

/// Sets what the bone's joint parameters say of places from the bone as it stands, on both sides of the joint to its
/// parent: bend angles 135 and 45 degrees about the bone, spheres around its vertices, the twist zone from its origin
/// to its end point, smooth zones one radius before and behind its origin. Current values alone; what is applied stays.
/// Copies of its children's parameters on the bone's joint are theirs. Opens no undo hold.
///
/// False, and nothing done, without a joint.
bool fit(RyBone *bone);

} // namespace RyLegacyZoneFit
