#pragma once

#include "rycore/math/RyBox3.h"

#include <QPointer>

class RyNode;

/// What the vertices of a node span in its parameter space, kept from one drawing to the next as long as the scene
/// stays as it is.
class RyKeptBox
{
public:
    /// A revision of 0 keeps nothing.
    const RyBox3 &of(const RyNode &node, quint64 sceneRevision);

private:
    QPointer<const RyNode> m_node;
    quint64 m_sceneRevision = 0;
    RyBox3 m_box;
};
