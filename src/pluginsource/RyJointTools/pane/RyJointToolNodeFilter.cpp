#include "pluginsource/RyJointTools/pane/RyJointToolNodeFilter.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"

void RyJointToolNodeFilter::refresh()
{
    m_primary = ryScene()->getPrimarySelection();
    m_skeleton = qobject_cast<RySkeleton *>(m_primary);
    if (!m_skeleton && qobject_cast<RyBone *>(m_primary))
        m_skeleton = m_primary->getSkeleton();
}

bool RyJointToolNodeFilter::accept(RyNode *node)
{
    if (!m_primary || node == m_primary || (m_skeleton && node == m_skeleton))
        return true;
    return m_skeleton && qobject_cast<RyBone *>(node) && node->getSkeleton() == m_skeleton;
}
