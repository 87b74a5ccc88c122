#pragma once

#include <vector>

class RyLegacyJointParam;
class RyNode;

/// The parameters that are edited with a node: of its own joint, in the joint's order, those that the node drives and
/// every smooth-scale. Empty without a joint and for null.
std::vector<RyLegacyJointParam *> listParams(const RyNode *node);
