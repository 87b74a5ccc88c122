#pragma once

#include <vector>

class RyBone;
class RySkeleton;

/// Bones that move a figure and will no longer be among its bones, nor among those that it stands on.
namespace RyBoneRelease {

/// Takes their bindings, their parametric joints and their pairs of face groups out of the figure, which stays. What
/// they held of its vertices `receiver` holds from then on; null: nobody. Undoable where a hold is open.
void release(const RySkeleton &figure, const std::vector<RyBone *> &bones, RyBone *receiver);

} // namespace RyBoneRelease
