#pragma once

#include <utility>
#include <vector>

class RyBone;
class RyNode;
class RySkeleton;

/// The bones of a skeleton in the order of their ids, with the way from a bone to its place. As fresh as the last
/// refill: pointers may dangle afterwards, so look a bone up with `boneAt` before it is used.
class RyBoneIndex
{
public:
    /// All bones of the skeleton; none for null.
    void refill(const RySkeleton *skeleton);
    int count() const { return int(m_bones.size()); }
    /// -1 for a node that is not in the list.
    int find(const RyNode *node) const;
    /// The bone at a place as long as it still belongs to the skeleton, else null.
    RyBone *boneAt(int index, const RySkeleton *skeleton) const;

private:
    std::vector<RyBone *> m_bones;
    std::vector<RyBone *> m_refilled;                             // kept for its memory
    mutable std::vector<std::pair<const RyNode *, int>> m_places; // sorted by address; empty until one is asked for
};
