#include "rycore/scene/RySelectionMap.h"

#include "rycore/scene/RyNode.h"
#include "rycore/undo/RyValueChange.h"

struct RySelectionMap::PairsValue : RyValueOf<RySelectionMap, std::vector<Pair>>
{
    static const Value &get(const RySelectionMap &map) { return map.m_pairs; }
    static void exchange(RySelectionMap &map, Value &pairs)
    {
        map.m_pairs.swap(pairs);
        emit map.mapChanged();
    }
};

RySelectionMap::RySelectionMap() = default;

void RySelectionMap::recordPairs()
{
    RyValueChange<PairsValue>::record(this);
}

RyNode *RySelectionMap::getPairNode(int index) const
{
    return m_pairs[size_t(index)].node;
}

int RySelectionMap::findPair(const QString &group) const
{
    for (size_t i = 0; i < m_pairs.size(); ++i) {
        if (m_pairs[i].group == group)
            return int(i);
    }
    return -1;
}

int RySelectionMap::findPair(const RyNode *node) const
{
    for (size_t i = 0; node && i < m_pairs.size(); ++i) {
        if (m_pairs[i].node == node)
            return int(i);
    }
    return -1;
}

QString RySelectionMap::findGroupForNode(const RyNode *node) const
{
    const int pair = findPair(node);
    return pair < 0 ? QString() : getPairGroup(pair);
}

bool RySelectionMap::addPair(const QString &group, RyNode *node, bool takeOver)
{
    if (!takeOver && findPair(group) >= 0)
        return false;
    recordPairs();
    if (takeOver) {
        std::erase_if(m_pairs, [&](const Pair &pair) { return pair.group == group || (node && pair.node == node); });
    }
    m_pairs.push_back({group, node});
    emit mapChanged();
    return true;
}

bool RySelectionMap::removePair(int index)
{
    if (index < 0 || index >= getNumPairs())
        return false;
    recordPairs();
    m_pairs.erase(m_pairs.begin() + index);
    emit mapChanged();
    return true;
}

void RySelectionMap::clearAll()
{
    if (m_pairs.empty())
        return;
    recordPairs();
    m_pairs.clear();
    emit mapChanged();
}
