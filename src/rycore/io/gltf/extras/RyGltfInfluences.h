#pragma once

#include "rycore/io/gltf/extras/RyGltfNodeIndex.h"
#include "rycore/io/gltf/extras/RyMapExtras.h"

#include <QtGlobal>

#include <span>
#include <vector>

class RyBoneBinding;
class RyNode;

/// What one binding weighs, as a file holds it: its general map, or the mean of its local ones.
class RyGltfBindingWeights
{
public:
    explicit RyGltfBindingWeights(const RyBoneBinding &binding);
    /// Of lists that outlive it; `ofVertices` ascending.
    RyGltfBindingWeights(std::span<const int> ofVertices, std::span<const quint16> list)
        : vertices(ofVertices), weights(list)
    {}
    RyGltfBindingWeights(RyGltfBindingWeights &&) = default;
    RyGltfBindingWeights &operator=(RyGltfBindingWeights &&) = default;

    bool isSameAs(const RyGltfBindingWeights &o) const;

    std::span<const int> vertices; // ascending
    std::span<const quint16> weights;

private:
    std::vector<int> m_vertices;
    std::vector<quint16> m_weights;
};

/// What a bone of a figure weighs.
struct RyGltfBoneWeights
{
    const RyNode *bone;
    RyGltfBindingWeights weights;
};

/// What moves the vertices of a figure in a file: of a skin the bindings whose bones belong to the figure, in their
/// order; of a parametric figure the weights that were fitted to it, for all of its bones. Empty for null.
std::vector<RyGltfBoneWeights> ryGltfBoneWeights(const RyNode *figure);

/// The influences of a figure's vertices as a file holds them: weights that sum to exactly full weight. A binding with
/// local maps counts with their mean. Where weights are more than full, a bone and the copies of its weights share what
/// it has, so that they move the vertex as it did.
class RyGltfInfluences
{
public:
    RyGltfInfluences(const RyNode *figure, int vertexCount);

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
    /// `nodeOf`: nodes of bones.
    RyMapExtras::Fingerprint fingerprint(const RyGltfNodeIndex &nodeOf) const;

private:
    std::vector<const RyNode *> m_bones;
    std::vector<size_t> m_first; // per vertex, and one behind
    std::vector<Influence> m_influences;
};
