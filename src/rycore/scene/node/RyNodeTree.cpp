#include "rycore/scene/node/RyNodeTree.h"

#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyValueChange.h"

#include <algorithm>

RyNode *RyNodeTree::child(int index) const
{
    return index >= 0 && index < int(m_children.size()) ? m_children[size_t(index)] : nullptr;
}

void RyNodeTree::collect(std::vector<RyNode *> &list, bool recursive) const
{
    if (!recursive) {
        list.insert(list.end(), m_children.begin(), m_children.end());
        return;
    }
    std::vector<RyNode *> pending(m_children.rbegin(), m_children.rend());
    while (!pending.empty()) {
        RyNode *node = pending.back();
        pending.pop_back();
        list.push_back(node);
        const std::vector<RyNode *> &children = node->m_tree.m_children;
        pending.insert(pending.end(), children.rbegin(), children.rend());
    }
}

bool RyNodeTree::isBelow(const RyNode *node) const
{
    for (const RyNode *above = m_parent; above; above = above->m_tree.m_parent) {
        if (above == node)
            return true;
    }
    return false;
}

RySkeleton *RyNodeTree::skeleton() const
{
    RySkeleton *found = nullptr;
    const RyNode *end = &m_node;
    for (; end && !end->m_tree.m_knowsSkeleton && !found; end = end->m_tree.m_parent)
        found = qobject_cast<RySkeleton *>(&end->m_tree.m_node);
    if (end && !found)
        found = end->m_tree.m_skeleton;
    for (const RyNode *node = &m_node; node != end; node = node->m_tree.m_parent) {
        node->m_tree.m_skeleton = found;
        node->m_tree.m_knowsSkeleton = true;
    }
    return found;
}

void RyNodeTree::forgetSkeleton()
{
    std::vector<RyNodeTree *> pending{this};
    while (!pending.empty()) {
        RyNodeTree *tree = pending.back();
        pending.pop_back();
        tree->m_knowsSkeleton = false;
        for (RyNode *child : tree->m_children) {
            if (child->m_tree.m_knowsSkeleton)
                pending.push_back(&child->m_tree);
        }
    }
}

namespace {

/// A place in a tree. It counts the parent.
struct Place
{
    RyRef<RyNode> parent;
    int index = -1;
    bool operator==(const Place &o) const { return parent.get() == o.parent.get() && index == o.index; }
};

/// Where undo puts a node, and, of the last time, where it was wanted and where it came to stand. Fewer siblings took
/// it at their end, and going back and forth must not forget that as long as it is the last of them: the next time
/// there may be all of them.
struct PlaceChange
{
    Place place;
    Place wanted = {};
    Place reached = {};
};

} // namespace

/// The parent of a node and its place among the siblings.
struct RyNodeTree::ParentValue : RyOrderedValueOf<RyNode, PlaceChange, RyRef<RyNode>>
{
    static Place placeOf(const RyNode &node)
    {
        RyNode *parent = node.m_tree.m_parent;
        if (!parent)
            return {};
        const std::vector<RyNode *> &siblings = parent->m_tree.m_children;
        return {RyRef<RyNode>(parent), int(std::find(siblings.begin(), siblings.end(), &node) - siblings.begin())};
    }
    static void moveTo(RyNode &node, const Place &place)
    {
        const RyRef<RyNode> before(node.m_tree.m_parent);
        RyNode *parent = place.parent.get();
        if (before)
            before->m_tree.detach(&node);
        if (parent && parent != &node && !parent->isDescendantOf(&node))
            parent->m_tree.attach(&node, std::min(place.index, parent->getNumNodeChildren()));
        if (RyScene *scene = node.getScene())
            emit scene->nodeListChanged();
    }
    static Value get(const RyNode &node) { return {placeOf(node)}; }
    static void exchange(RyNode &node, Value &change)
    {
        Place before = placeOf(node);
        const bool isLast = !before.parent || before.index + 1 == before.parent->getNumNodeChildren();
        if (before == change.reached && isLast)
            before = std::move(change.wanted);
        moveTo(node, change.place);
        change = {std::move(before), std::move(change.place), placeOf(node)};
    }
};

bool RyNodeTree::add(RyNode *child, bool keepWorld, int index)
{
    if (!child || child == &m_node || (!child->m_tree.m_children.empty() && isBelow(child)))
        return false;
    const RyAffine before = keepWorld ? child->worldMap() : RyAffine();
    const RyRef<RyNode> guard(child);
    RyValueChange<ParentValue>::record(child);
    if (RyNode *parent = child->m_tree.m_parent)
        parent->m_tree.detach(child);
    attach(child, index < 0 ? int(m_children.size()) : std::min(index, int(m_children.size())));
    if (keepWorld)
        child->adjustLocalMap(before * m_node.worldMap().inverse());
    RyScene *scene = m_node.getScene() ? m_node.getScene() : child->getScene();
    if (scene)
        emit scene->nodeListChanged();
    return true;
}

bool RyNodeTree::remove(RyNode *child, bool keepWorld)
{
    if (!child || child->m_tree.m_parent != &m_node)
        return false;
    const RyAffine before = keepWorld ? child->worldMap() : RyAffine();
    const RyRef<RyNode> guard(child);
    RyValueChange<ParentValue>::record(child);
    detach(child);
    if (keepWorld)
        child->adjustLocalMap(before);
    if (RyScene *scene = m_node.getScene())
        emit scene->nodeListChanged();
    return true;
}

void RyNodeTree::attach(RyNode *child, int index)
{
    child->ref();
    child->m_tree.m_parent = &m_node;
    m_children.insert(m_children.begin() + index, child);
    RyNodeMaps::invalidate(*child);
    child->m_tree.forgetSkeleton();
    emit m_node.childrenChanged();
}

void RyNodeTree::detach(RyNode *child)
{
    const auto place = std::find(m_children.begin(), m_children.end(), child);
    if (place == m_children.end())
        return;
    m_children.erase(place);
    child->m_tree.m_parent = nullptr;
    RyNodeMaps::invalidate(*child);
    child->m_tree.forgetSkeleton();
    emit m_node.childrenChanged();
    child->unref();
}

void RyNodeTree::dissolve()
{
    if (m_parent)
        m_parent->m_tree.detach(&m_node);
    // Descendants that nobody else holds go one after the other, so that a deep chain does not nest destructors.
    std::vector<RyRef<RyNode>> orphans;
    const auto takeChildrenOf = [&orphans](RyNodeTree &tree) {
        while (!tree.m_children.empty()) {
            orphans.emplace_back(tree.m_children.back());
            tree.detach(tree.m_children.back());
        }
    };
    takeChildrenOf(*this);
    while (!orphans.empty()) {
        const RyRef<RyNode> orphan = std::move(orphans.back());
        orphans.pop_back();
        if (orphan && orphan->refCount() == 1)
            takeChildrenOf(orphan->m_tree);
    }
}
