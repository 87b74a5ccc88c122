#pragma once

#include <vector>

class RyNode;

/// Makes the current values of the rigging of these nodes their defaults, in one rig edit; see `listRiggingProperties`.
/// A value that links add to is memorized as it results, and none of them changes by it. Null nodes are skipped.
void memorizeRigging(const std::vector<RyNode *> &nodes);
