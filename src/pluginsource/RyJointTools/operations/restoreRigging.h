#pragma once

#include <vector>

class RyNode;

/// Makes the defaults of the rigging of these nodes their current values, in one rig edit; see `listRiggingProperties`.
/// Where links add to a value, it results in its default. Null nodes are skipped.
void restoreRigging(const std::vector<RyNode *> &nodes);
