#pragma once

#include <map>

class RyNode;

/// Where the nodes of a scene stand in a list of a file: that of its nodes, or that of a skin's joints.
class RyGltfNodeIndex
{
public:
    /// A node that is there keeps its place.
    void add(const RyNode *node, int place) { m_places.emplace(node, place); }
    void add(const RyGltfNodeIndex &others) { m_places.insert(others.m_places.begin(), others.m_places.end()); }
    /// -1 for none.
    int of(const RyNode *node) const
    {
        const auto found = m_places.find(node);
        return found == m_places.end() ? -1 : found->second;
    }
    /// In no order that means anything.
    const std::map<const RyNode *, int> &entries() const { return m_places; }

private:
    std::map<const RyNode *, int> m_places;
};
