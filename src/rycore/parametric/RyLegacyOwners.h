#pragma once

#include "rycore/parametric/RyLegacyRig.h"

class RyNode;

namespace RyLegacyOwners {

/// Which bone each vertex belongs to, and which bones have face groups. A vertex belongs to the bone that the selection
/// map pairs with its face group; of several bones on one chain to the lowest, of bones on different branches to the
/// nearest one above all of them; without any to the bone `first`. Pairs with groups that the mesh lacks count for
/// nothing. `bones`: those of the rig.
void fill(const RySkeleton &skeleton, const std::vector<RyNode *> &bones, int first, RyLegacyRig &rig);

/// The owner among these bones, for which the parents stand before the children: see above.
int common(const std::vector<RyLegacyRig::Bone> &bones, const std::vector<int> &candidates, int first = 0);

} // namespace RyLegacyOwners
