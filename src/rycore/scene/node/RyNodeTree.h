#pragma once

#include <vector>

class RyNode;
class RySkeleton;

/// Where a node hangs: its parent, the children that it holds, the walks over them. Both ends of a tie are told of a
/// change, and undo knows it.
class RyNodeTree
{
public:
    explicit RyNodeTree(RyNode &node) : m_node(node) {}

    RyNode *parent() const { return m_parent; }
    /// In the order in which they were added.
    const std::vector<RyNode *> &children() const { return m_children; }
    /// Null outside the range.
    RyNode *child(int index) const;
    /// Appends the children, or all descendants in pre-order, to the list.
    void collect(std::vector<RyNode *> &list, bool recursive) const;
    bool isBelow(const RyNode *node) const;
    /// The node itself when it is a skeleton, else the nearest one above it, else null. Kept until the tree changes, so
    /// that asking all nodes of a deep tree costs one walk.
    RySkeleton *skeleton() const;
    /// Those below the node must look for their skeleton anew.
    void forgetSkeleton();

    /// Refuses null, the node itself and a cycle; `index` below 0 appends. `keepWorld` rewrites the child's pose so
    /// that it stays in the world.
    bool add(RyNode *child, bool keepWorld, int index);
    /// Refuses what is no child of the node.
    bool remove(RyNode *child, bool keepWorld);
    /// Cuts all ties without undo, at the node's end.
    void dissolve();

private:
    struct ParentValue;

    void attach(RyNode *child, int index);
    void detach(RyNode *child);

    RyNode &m_node;
    RyNode *m_parent = nullptr;
    std::vector<RyNode *> m_children; // each counted once
    // Who knows its skeleton has it from the parent, who then knows as well.
    mutable RySkeleton *m_skeleton = nullptr;
    mutable bool m_knowsSkeleton = false;
};
