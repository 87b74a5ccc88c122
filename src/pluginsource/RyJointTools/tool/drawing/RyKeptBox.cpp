#include "pluginsource/RyJointTools/tool/drawing/RyKeptBox.h"

#include "rycore/scene/RyNode.h"

const RyBox3 &RyKeptBox::of(const RyNode &node, quint64 sceneRevision)
{
    if (m_node != &node || m_sceneRevision != sceneRevision || sceneRevision == 0) {
        m_box = node.getOrientedBoundingBox().box;
        m_node = &node;
        m_sceneRevision = sceneRevision;
    }
    return m_box;
}
