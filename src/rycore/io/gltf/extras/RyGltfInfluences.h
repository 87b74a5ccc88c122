#pragma once

#include "rycore/io/gltf/extras/RyGltfNodeIndex.h"

#include <QtGlobal>

#include <span>
#include <vector>

class RyBoneBinding;
class RyNode;
class RySkinBinding;

/// What one binding weighs, as a file holds it: its general map, or the mean of its local ones.
class RyGltfBindingWeights
{
public:
    explicit RyGltfBindingWeights(const RyBoneBinding &binding);
    /// Whether the binding's bone still belongs to the skin's figure; the others move nothing in a file.
    static bool isHeld(const RyBoneBinding &binding);

    bool isSameAs(const RyGltfBindingWeights &o) const;

    std::span<const int> vertices; // ascending
    std::span<const quint16> weights;

private:
    std::vector<int> m_vertices;
    std::vector<quint16> m_weights;
};

/// The influences of a skin's vertices as a file holds them: weights that sum to exactly full weight. A binding with
/// local maps counts with their mean. Where weights are more than full, a bone and the copies of its weights share what
/// it has, so that they move the vertex as it did.
class RyGltfInfluences
{
public:
    RyGltfInfluences(const RySkinBinding *skin, int vertexCount);

    struct Influence
    {
        quint16 bone;   // place in `bones`
        quint16 weight; // never zero
    };
    /// In descending order of weight, the first bone first on ties.
    std::span<const Influence> of(int vertex) const
    {
        const size_t at = size_t(vertex);
        return {m_influences.data() + m_first[at], m_influences.data() + m_first[at + 1]};
    }
    const std::vector<const RyNode *> &bones() const { return m_bones; }
    int vertexCount() const { return int(m_first.size()) - 1; }
    /// Joints of all bones; the first one for those that have none.
    std::vector<int> placesIn(const RyGltfNodeIndex &placeOf) const;

private:
    std::vector<const RyNode *> m_bones;
    std::vector<size_t> m_first; // per vertex, and one behind
    std::vector<Influence> m_influences;
};
