#include "rycore/scene/RyNodeChanges.h"

#include "rycore/scene/RyScene.h"

#include <algorithm>

namespace {

int indexInParent(const RyNode *node)
{
    const RyNode *parent = node->getNodeParent();
    if (!parent)
        return -1;
    for (int i = 0; i < parent->getNumNodeChildren(); ++i) {
        if (parent->getNodeChild(i) == node)
            return i;
    }
    return -1;
}

} // namespace

RyNodeParentChange::RyNodeParentChange(RyNode *child)
    : m_child(child), m_parent(child->getNodeParent()), m_index(indexInParent(child))
{}

void RyNodeParentChange::swap()
{
    RyNode *child = m_child.get();
    if (!child)
        return;
    const RyRef<RyNode> parentNow(child->getNodeParent());
    const int indexNow = indexInParent(child);
    RyNode *parent = m_parent.get();
    if (parentNow)
        parentNow->detachChild(child);
    if (parent && parent != child && !parent->isDescendantOf(child))
        parent->attachChild(child, std::min(m_index, parent->getNumNodeChildren()));
    m_parent = parentNow;
    m_index = indexNow;
    if (child->getScene())
        emit child->getScene()->nodeListChanged();
}

void RyNodeFlagChange::swap()
{
    if (!m_node)
        return;
    std::swap(m_node.data()->*m_flag, m_value);
    if (m_node.data()->*m_flag != m_value)
        m_node->announceFlag(m_flag);
}

void RyNodeOrderChange::swap()
{
    if (!m_node)
        return;
    const RyRotationOrder now = m_node->getRotationOrder();
    m_node->applyRotationOrder(m_order);
    m_order = now;
}

void RyNodeObjectChange::swap()
{
    if (!m_node)
        return;
    const RyRef<RyObject> now(m_node->getObject());
    m_node->applyObject(m_object.get());
    m_object = now;
}
