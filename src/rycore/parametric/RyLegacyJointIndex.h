#pragma once

#include <vector>

class RyLegacyJoint;
class RyNode;

/// Finds joints that are in bindings by their bones, without looking through all: the bones of a binding may be of
/// several skeletons.
class RyLegacyJointIndex
{
public:
    /// Under the bone that it has, where it has one.
    static void insert(RyLegacyJoint *joint);
    static void remove(RyLegacyJoint *joint);
    /// In no particular order, of all bindings; none for null.
    static std::vector<RyLegacyJoint *> jointsOf(const RyNode *bone);
};
