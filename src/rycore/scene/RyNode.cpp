#include "rycore/scene/RyNode.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyValueChange.h"

#include <QPointer>

#include <algorithm>

RyNode::RyNode(Rigging rigging)
{
    if (rigging == Rigging::Full)
        m_rigging.make(this, createPrivateGroups(QStringLiteral("Rigging")));
    m_pose.make(this, createPublicGroups(QStringLiteral("Transforms")));
}

RyNode::~RyNode()
{
    ref(); // somebody deleted it in spite of its holders: letting go of them must not delete it again
    if (m_scene)
        m_scene->unregisterNode(this);
    if (m_parent)
        m_parent->detachChild(this);
    // Descendants that nobody else holds go one after the other, so that a deep chain does not nest destructors.
    std::vector<RyRef<RyNode>> orphans;
    const auto takeChildrenOf = [&orphans](RyNode *node) {
        while (!node->m_children.empty()) {
            orphans.emplace_back(node->m_children.back());
            node->detachChild(node->m_children.back());
        }
    };
    takeChildrenOf(this);
    while (!orphans.empty()) {
        const RyRef<RyNode> orphan = std::move(orphans.back());
        orphans.pop_back();
        if (orphan && orphan->refCount() == 1)
            takeChildrenOf(orphan.get());
    }
    applyObject(nullptr);
}

void RyNode::nameHasChanged()
{
    const QPointer<RyNode> guard(this);
    RyElement::nameHasChanged();
    if (guard && m_scene)
        emit m_scene->nodeListChanged();
}

// --- Tree

RyNode *RyNode::getNodeChild(int index) const
{
    return index >= 0 && index < int(m_children.size()) ? m_children[size_t(index)] : nullptr;
}

void RyNode::getNodeChildren(std::vector<RyNode *> &list, bool recursive) const
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
        pending.insert(pending.end(), node->m_children.rbegin(), node->m_children.rend());
    }
}

bool RyNode::isDescendantOf(const RyNode *node) const
{
    for (const RyNode *above = m_parent; above; above = above->m_parent) {
        if (above == node)
            return true;
    }
    return false;
}

/// Where a node hangs: its parent and its place among the siblings. It counts while a step may bring it back.
struct RyNode::ParentValue : RyOrderedValueOf<RyNode, std::pair<RyRef<RyNode>, int>, RyRef<RyNode>>
{
    static Value get(const RyNode &node)
    {
        RyNode *parent = node.m_parent;
        if (!parent)
            return {nullptr, -1};
        const auto place = std::find(parent->m_children.begin(), parent->m_children.end(), &node);
        return {parent, int(place - parent->m_children.begin())};
    }
    static void put(RyNode &node, const Value &value)
    {
        const RyRef<RyNode> now(node.m_parent);
        RyNode *parent = value.first.get();
        if (now)
            now->detachChild(&node);
        if (parent && parent != &node && !parent->isDescendantOf(&node))
            parent->attachChild(&node, std::min(value.second, parent->getNumNodeChildren()));
        if (node.m_scene)
            emit node.m_scene->nodeListChanged();
    }
};

bool RyNode::addNodeChild(RyNode *child, bool keepWorld, int index)
{
    if (!child || child == this || (!child->m_children.empty() && isDescendantOf(child)))
        return false;
    const RyAffine before = keepWorld ? child->worldMap() : RyAffine();
    const RyRef<RyNode> guard(child);
    RyValueChange<ParentValue>::record(child);
    if (child->m_parent)
        child->m_parent->detachChild(child);
    attachChild(child, index < 0 ? int(m_children.size()) : std::min(index, int(m_children.size())));
    if (keepWorld)
        child->m_pose.takeFrom(before * worldMap().inverse(), child->getOrigin(), child->getOrientation());
    if (m_scene)
        emit m_scene->nodeListChanged();
    else if (child->m_scene)
        emit child->m_scene->nodeListChanged();
    return true;
}

bool RyNode::removeNodeChild(RyNode *child, bool keepWorld)
{
    if (!child || child->m_parent != this)
        return false;
    const RyAffine before = keepWorld ? child->worldMap() : RyAffine();
    const RyRef<RyNode> guard(child);
    RyValueChange<ParentValue>::record(child);
    detachChild(child);
    if (keepWorld)
        child->m_pose.takeFrom(before, child->getOrigin(), child->getOrientation());
    if (m_scene)
        emit m_scene->nodeListChanged();
    return true;
}

void RyNode::attachChild(RyNode *child, int index)
{
    child->ref();
    child->m_parent = this;
    m_children.insert(m_children.begin() + index, child);
    child->invalidateMaps();
    emit childrenChanged();
}

void RyNode::detachChild(RyNode *child)
{
    const auto place = std::find(m_children.begin(), m_children.end(), child);
    if (place == m_children.end())
        return;
    m_children.erase(place);
    child->m_parent = nullptr;
    child->invalidateMaps();
    emit childrenChanged();
    child->unref();
}

RySkeleton *RyNode::getSkeleton() const
{
    for (const RyNode *node = this; node; node = node->m_parent) {
        if (auto *skeleton = qobject_cast<const RySkeleton *>(node))
            return const_cast<RySkeleton *>(skeleton);
    }
    return nullptr;
}

// --- Selection and visibility

void RyNode::select(bool onOff)
{
    if (m_scene)
        m_scene->selectNode(this, onOff);
}

bool RyNode::isSelected() const
{
    return m_scene && m_scene->isSelected(this);
}

bool RyNode::isVisible() const
{
    for (const RyNode *node = this; node; node = node->m_parent) {
        if (node->m_hidden)
            return false;
    }
    return true;
}

template<bool RyNode::*Flag>
struct RyNode::FlagValue : RyValueOf<RyNode, bool>
{
    static bool get(const RyNode &node) { return node.*Flag; }
    static void put(RyNode &node, bool value)
    {
        if (node.*Flag == value)
            return;
        node.*Flag = value;
        node.announceFlag(Flag);
    }
};

template<bool RyNode::*Flag>
void RyNode::setFlag(bool value)
{
    if (this->*Flag == value)
        return;
    RyValueChange<FlagValue<Flag>>::record(this);
    FlagValue<Flag>::put(*this, value);
}

void RyNode::setHidden(bool hidden)
{
    setFlag<&RyNode::m_hidden>(hidden);
}

void RyNode::setSelectable(bool selectable)
{
    setFlag<&RyNode::m_selectable>(selectable);
}

void RyNode::setPromoteSelection(bool promote)
{
    setFlag<&RyNode::m_promoteSelection>(promote);
}

void RyNode::setInheritScale(bool inherit)
{
    setFlag<&RyNode::m_inheritScale>(inherit);
}

void RyNode::announceFlag(bool RyNode::*flag)
{
    if (flag == &RyNode::m_hidden) {
        emit hiddenChanged(m_hidden);
    } else if (flag == &RyNode::m_promoteSelection) {
        emit promoteSelectionChanged(m_promoteSelection);
    } else if (flag == &RyNode::m_inheritScale) {
        invalidateMaps();
        emit inheritScaleChanged();
        emit poseChanged();
    }
    if (m_scene)
        emit m_scene->drawnDataChanged();
}

// --- Objects

struct RyNode::ObjectValue : RyValueOf<RyNode, RyRef<RyObject>>
{
    static const Value &get(const RyNode &node) { return node.m_object; }
    static void put(RyNode &node, const Value &object) { node.applyObject(object.get()); }
};

void RyNode::setObject(RyObject *object)
{
    if (m_object.get() == object)
        return;
    RyValueChange<ObjectValue>::record(this);
    applyObject(object);
}

void RyNode::applyObject(RyObject *object)
{
    if (RyObject *old = m_object.get()) {
        disconnect(old, nullptr, this, nullptr);
        if (old->m_node == this)
            old->m_node = nullptr;
    }
    m_object = RyRef<RyObject>(object);
    if (object) {
        object->m_node = this;
        connect(object, &RyObject::contentChanged, this, &RyNode::announceDrawn);
    }
    announceDrawn();
}

void RyNode::announceDrawn()
{
    if (m_scene)
        emit m_scene->drawnDataChanged();
}

RyOrientedBox3 RyNode::getOrientedBoundingBox() const
{
    RyOrientedBox3 oriented;
    oriented.box = getBoundingBox();
    return oriented;
}

RyBox3 RyNode::getBoundingBox() const
{
    const RySkeleton *skeleton = getSkeleton();
    const RyNode *holder = m_object || !skeleton ? this : skeleton;
    RyObject *object = holder->getObject();
    const auto *shape = object ? qobject_cast<RyFacetShape *>(object->getCurrentShape()) : nullptr;
    const RyFacetMesh *mesh = shape ? shape->getFacetMesh() : nullptr;
    if (!mesh)
        return {};
    const RySelectionMap *map = skeleton ? skeleton->getSelectionMap() : nullptr;
    const RyFaceGroup *group = map ? mesh->findFaceGroup(map->findGroupForNode(this)) : nullptr;
    if (!group)
        return mesh->getBoundingBox();
    RyBox3 box;
    for (int i = 0; i < group->getFacets().count(); ++i) {
        const RyFacet &facet = mesh->getFacet(group->getFacets().getIndex(i));
        for (int corner = 0; corner < facet.count(); ++corner)
            box.include(mesh->getVertex(facet.vertices[corner]));
    }
    return box;
}
