#include "rycore/scene/RyRiggingEdits.h"

#include "rycore/scene/RyNode.h"

#include <utility>

void RyRiggingEdits::finish()
{
    if (m_level > 0 && --m_level == 0)
        announce();
}

void RyRiggingEdits::finishAll()
{
    ++m_period;
    if (std::exchange(m_level, 0) > 0)
        announce();
}

bool RyRiggingEdits::putOff(RyNode *node)
{
    if (!isOpen())
        return false;
    if (node->m_edit.startWaiting())
        m_waiting.emplace_back(node);
    return true;
}

void RyRiggingEdits::announce()
{
    // A listener may delete nodes, and may open a rig edit of its own.
    for (const QPointer<RyNode> &node : std::exchange(m_waiting, {})) {
        if (!node)
            continue;
        node->m_edit.stopWaiting();
        emit node->riggingChanged();
    }
}
