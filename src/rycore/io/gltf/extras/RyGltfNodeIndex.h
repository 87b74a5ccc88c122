#pragma once

#include "rycore/base/RyPointerTable.h"

#include <utility>
#include <vector>

class RyNode;

/// Where the nodes of a scene stand in a list of a file: that of its nodes, or that of a skin's joints.
class RyGltfNodeIndex
{
public:
    using Entries = std::vector<std::pair<const RyNode *, int>>;

    /// A node that is there keeps its place.
    void add(const RyNode *node, int place)
    {
        if (m_places.insertNew(node, place))
            m_entries.emplace_back(node, place);
    }
    void add(const RyGltfNodeIndex &others)
    {
        for (const auto &[node, place] : others.m_entries)
            add(node, place);
    }
    /// -1 for none.
    int of(const RyNode *node) const
    {
        const int *place = node ? m_places.find(node) : nullptr;
        return place ? *place : -1;
    }
    /// In the order in which they were added.
    const Entries &entries() const { return m_entries; }

private:
    Entries m_entries;
    RyPointerTable<int> m_places;
};
