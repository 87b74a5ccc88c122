#include "rycore/viewport/RyPressRestorePoint.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"

#include <algorithm>

RyPressRestorePoint::RyPressRestorePoint(RyScene *scene, const QString &toolName) : m_scene(scene), m_toolName(toolName)
{
    if (scene)
        m_nodes.insert(scene->getNodes().begin(), scene->getNodes().end());
}

RyPressRestorePoint::~RyPressRestorePoint()
{
    finish();
}

void RyPressRestorePoint::pressed()
{
    const RyUndoStack *stack = ryUndoStack();
    if (m_span.isNeeded() && stack && !stack->isHoldOpen())
        finish();
}

void RyPressRestorePoint::finish()
{
    if (m_span.isNeeded())
        m_span.setCaption(caption());
    m_span.finish();
}

QString RyPressRestorePoint::caption() const
{
    if (!m_scene)
        return m_toolName;
    std::vector<const RyNode *> fresh;
    for (const RyNode *node : m_scene->getNodes()) {
        if (m_nodes.count(node) == 0)
            fresh.push_back(node);
    }
    const auto isBone = [](const RyNode *node) { return qobject_cast<const RyBone *>(node) != nullptr; };
    if (fresh.empty())
        return m_scene->getNodes().size() < m_nodes.size() ? tr("Delete in Viewport")
                                                           : tr("Edit with %1").arg(m_toolName);
    if (fresh.size() == 1)
        return isBone(fresh.front()) ? tr("Create Bone") : tr("Create %1").arg(fresh.front()->getLabel());
    return std::all_of(fresh.begin(), fresh.end(), isBone) ? tr("Create %1 Bones").arg(fresh.size())
                                                           : tr("Create %1 Nodes").arg(fresh.size());
}
