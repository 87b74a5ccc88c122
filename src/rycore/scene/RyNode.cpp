#include "rycore/scene/RyNode.h"

#include "rycore/scene/RyScene.h"

#include <QPointer>

RyNode::RyNode(Rigging rigging)
{
    if (rigging == Rigging::Full)
        m_rigging.make(this, createPrivateGroups(QStringLiteral("Rigging")));
    m_pose.make(this, createPublicGroups(QStringLiteral("Transforms")));
}

RyNode::~RyNode()
{
    ref();                   // somebody deleted it in spite of its holders: letting go of them must not delete it again
    m_tree.forgetSkeleton(); // a skeleton is none from here on
    if (m_scene)
        m_scene->unregisterNode(this);
    m_tree.dissolve();
    m_geometry.release();
}

void RyNode::nameHasChanged()
{
    const QPointer<RyNode> guard(this);
    RyElement::nameHasChanged();
    if (guard && m_scene)
        emit m_scene->nodeListChanged();
}

void RyNode::announceDrawn()
{
    if (m_scene)
        emit m_scene->drawnDataChanged();
}

// --- Tree

RyNode *RyNode::getNodeChild(int index) const
{
    return m_tree.child(index);
}

void RyNode::getNodeChildren(std::vector<RyNode *> &list, bool recursive) const
{
    m_tree.collect(list, recursive);
}

bool RyNode::addNodeChild(RyNode *child, bool keepWorld, int index)
{
    return m_tree.add(child, keepWorld, index);
}

bool RyNode::removeNodeChild(RyNode *child, bool keepWorld)
{
    return m_tree.remove(child, keepWorld);
}

bool RyNode::isDescendantOf(const RyNode *node) const
{
    return m_tree.isBelow(node);
}

RySkeleton *RyNode::getSkeleton() const
{
    return m_tree.skeleton();
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
    return m_flags.isVisible();
}

void RyNode::setHidden(bool hidden)
{
    m_flags.set(RyNodeFlags::Hidden, hidden);
}

void RyNode::setSelectable(bool selectable)
{
    m_flags.set(RyNodeFlags::Selectable, selectable);
}

void RyNode::setPromoteSelection(bool promote)
{
    m_flags.set(RyNodeFlags::PromotesSelection, promote);
}

void RyNode::setInheritScale(bool inherit)
{
    m_flags.set(RyNodeFlags::InheritsScale, inherit);
}

// --- Geometry

void RyNode::setObject(RyObject *object)
{
    m_geometry.setObject(object);
}

RyBox3 RyNode::getBoundingBox() const
{
    return m_geometry.box();
}

RyOrientedBox3 RyNode::getOrientedBoundingBox() const
{
    RyOrientedBox3 oriented;
    oriented.box = getBoundingBox();
    return oriented;
}
