#pragma once

#include <utility>
#include <vector>

/// The topmost node above each node of a forest. A walk up the tree shortens the paths that it takes, so that asking
/// for all nodes costs about as much as there are nodes, however deep they hang.
class RyGltfTops
{
public:
    /// `parents`: of each node, -1 for a top.
    explicit RyGltfTops(std::vector<int> parents = {}) : m_above(std::move(parents)) {}

    int of(int node)
    {
        for (int above = m_above[size_t(node)]; above >= 0; above = m_above[size_t(node)]) {
            const int next = m_above[size_t(above)];
            if (next >= 0)
                m_above[size_t(node)] = next;
            node = above;
        }
        return node;
    }
    /// Hangs a top below another node.
    void hang(int top, int above) { m_above[size_t(top)] = above; }
    /// One more node, a top.
    void add() { m_above.push_back(-1); }

private:
    std::vector<int> m_above; // a node above, -1 for a top
};
