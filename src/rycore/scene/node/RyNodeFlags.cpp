#include "rycore/scene/node/RyNodeFlags.h"

#include "rycore/scene/RyNode.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/undo/RyValueChange.h"

#include <optional>

struct RyNodeFlags::FlagValue : RySlotOf<RyNode, bool, 4>
{
    using RySlotOf::RySlotOf;
    bool get(const RyNode &node) const { return node.m_flags.m_values[slot]; }
    void put(RyNode &node, bool value) const { node.m_flags.apply(Flag(slot), value); }
};

void RyNodeFlags::set(Flag flag, bool value)
{
    if (has(flag) == value)
        return;
    std::optional<RyClipPlayer::Stay> stay;
    if (flag == Hidden)
        stay.emplace();
    RyValueChange<FlagValue>::record(&m_node, FlagValue(flag));
    apply(flag, value);
}

void RyNodeFlags::apply(Flag flag, bool value)
{
    if (has(flag) == value)
        return;
    m_values[flag] = value;
    switch (flag) {
    case Hidden:
        emit m_node.hiddenChanged(value);
        break;
    case Selectable:
        break;
    case PromotesSelection:
        emit m_node.promoteSelectionChanged(value);
        break;
    case InheritsScale:
        RyNodeMaps::invalidate(m_node);
        emit m_node.inheritScaleChanged();
        emit m_node.poseChanged();
        break;
    }
    m_node.announceDrawn();
}

bool RyNodeFlags::isVisible() const
{
    for (const RyNode *node = &m_node; node; node = node->getNodeParent()) {
        if (node->isHidden())
            return false;
    }
    return true;
}
