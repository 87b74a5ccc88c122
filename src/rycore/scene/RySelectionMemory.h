#pragma once

#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoItem.h"

#include <QPointer>

#include <vector>

/// Selects what was selected at one end of a step that exchanges nodes: before it (when it is undone; the step's first
/// item) or after it (when it is redone; the last one).
class RySelectionMemory : public RyUndoItem
{
public:
    enum class End { Before, After };
    RySelectionMemory(RyScene *scene, const std::vector<RyNode *> &nodes, End end)
        : m_scene(scene), m_nodes(nodes.begin(), nodes.end()), m_end(end)
    {}
    void swap() override
    {
        m_done = !m_done;
        if (m_scene && m_done == (m_end == End::After))
            m_scene->setSelection({m_nodes.begin(), m_nodes.end()});
    }

private:
    QPointer<RyScene> m_scene;
    std::vector<RyRef<RyNode>> m_nodes;
    End m_end;
    bool m_done = true;
};
