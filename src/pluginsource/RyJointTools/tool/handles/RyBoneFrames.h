#pragma once

#include "pluginsource/RyJointTools/tool/handles/RyBoneFrame.h"

#include "rycore/scene/node/RyNodeMaps.h"

#include <vector>

class RyBone;
class RyNode;

/// The visible bones of a drawing in order, with all that their shapes need of the scene. Pointers may dangle when the
/// scene changes.
class RyBoneFrames
{
public:
    struct Entry
    {
        const RyBone *bone;
        RyBoneFrame frame;
        RyVec3 parentTip;
        bool hasLink; // to the tip of the parent: all but bones that hang on their skeleton
    };

    explicit RyBoneFrames(bool withGhosts = false) : m_withGhosts(withGhosts) {}

    /// All bones that hang below the node through bones only, depth first, by one walk down the tree.
    void addBranches(const RyNode *node);
    /// The node when it is a bone.
    void addIfBone(const RyNode *node);
    /// The node, its parent and its children, as far as they are bones; nothing when the node is none.
    void addFamily(const RyNode *node);

    const std::vector<Entry> &entries() const { return m_entries; }
    /// The default places of the same bones in the same order; none without ghosts.
    const std::vector<RyBoneFrame> &ghosts() const { return m_ghosts; }

private:
    void add(const RyBone &bone, const RyNodeMaps::Default &defaultMaps);
    /// For a child of a visible node; false when it is no bone or hidden. The maps are the parent's, then the child's.
    bool addBelow(const RyNode &child, RyNodeMaps::Default &maps);
    /// Nothing is worked out where no ghosts are drawn.
    RyNodeMaps::Default defaultMaps(const RyNode *node) const;

    bool m_withGhosts;
    std::vector<Entry> m_entries;
    std::vector<RyBoneFrame> m_ghosts;
};
