#pragma once

#include "pluginsource/RyJointTools/operations/listBindingWeights.h"

#include <memory>
#include <span>

/// Which bindings bear on each vertex of a mesh and how much, one list for each vertex. Lists are for adding up: they
/// are in no order, and a binding may be in one several times.
class RyBindingInfluences
{
public:
    struct Influence
    {
        int binding;
        quint16 weight;
    };

    RyBindingInfluences(const std::vector<RyBindingWeights> &weights, int vertexCount);

    /// Nothing for a vertex that there is not.
    std::span<const Influence> of(int vertex) const
    {
        if (vertex < 0 || size_t(vertex) + 1 >= m_offsets.size())
            return {};
        const size_t first = m_offsets[size_t(vertex)];
        return {m_influences.get() + first, m_offsets[size_t(vertex) + 1] - first};
    }

private:
    void fillRange(const std::vector<RyBindingWeights> &pieces, int firstVertex, size_t firstInfluence);

    std::vector<size_t> m_offsets; // one more than vertices
    std::unique_ptr<Influence[]> m_influences;
};
