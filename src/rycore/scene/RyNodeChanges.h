#pragma once

#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyObject.h"
#include "rycore/undo/RyUndoItem.h"

#include <QPointer>

/// Undo items of nodes. Private to this folder.

/// Which of a node's values an item keeps; part of its key.
enum class RyNodeAspect : quintptr { Hidden = 1, Selectable, PromoteSelection, InheritScale, RotationOrder, Object };

inline RyUndoKey ryNodeKey(const RyNode *node, RyNodeAspect aspect)
{
    return {node, quintptr(aspect)};
}

/// Where a node hangs: its parent and its place among the siblings.
class RyNodeParentChange : public RyUndoItem
{
public:
    explicit RyNodeParentChange(RyNode *child);
    void swap() override;

private:
    RyRef<RyNode> m_child;
    RyRef<RyNode> m_parent;
    int m_index;
};

class RyNodeFlagChange : public RyUndoItem
{
public:
    RyNodeFlagChange(RyNode *node, bool RyNode::*flag, RyNodeAspect aspect)
        : m_node(node), m_key(node), m_flag(flag), m_aspect(aspect), m_value(node->*flag)
    {}
    void swap() override;
    RyUndoKey key() const override { return ryNodeKey(m_key, m_aspect); }
    bool isAlive() const override { return !m_node.isNull(); }

private:
    QPointer<RyNode> m_node;
    const RyNode *m_key;
    bool RyNode::*m_flag;
    RyNodeAspect m_aspect;
    bool m_value;
};

class RyNodeOrderChange : public RyUndoItem
{
public:
    explicit RyNodeOrderChange(RyNode *node) : m_node(node), m_key(node), m_order(node->getRotationOrder()) {}
    void swap() override;
    RyUndoKey key() const override { return ryNodeKey(m_key, RyNodeAspect::RotationOrder); }
    bool isAlive() const override { return !m_node.isNull(); }

private:
    QPointer<RyNode> m_node;
    const RyNode *m_key;
    RyRotationOrder m_order;
};

class RyNodeObjectChange : public RyUndoItem
{
public:
    explicit RyNodeObjectChange(RyNode *node) : m_node(node), m_key(node), m_object(node->getObject()) {}
    void swap() override;
    RyUndoKey key() const override { return ryNodeKey(m_key, RyNodeAspect::Object); }
    bool isAlive() const override { return !m_node.isNull(); }

private:
    QPointer<RyNode> m_node;
    const RyNode *m_key;
    RyRef<RyObject> m_object;
};
