#pragma once

#include <QtGlobal>

#include <map>
#include <span>
#include <string>
#include <utility>
#include <vector>

class RyBone;
class RyBoneBinding;
class RyGltfDocument;
class RyNode;
class RySkinBinding;

/// What one binding weighs, as a file holds it: its general map, or the mean of its local ones.
class RyGltfBindingWeights
{
public:
    explicit RyGltfBindingWeights(const RyBoneBinding &binding);
    /// Whether the binding's bone still belongs to the skin's figure; the others move nothing in a file.
    static bool isHeld(const RyBoneBinding &binding);

    std::span<const int> vertices; // ascending
    std::span<const quint16> weights;

private:
    std::vector<int> m_vertices;
    std::vector<quint16> m_weights;
};

/// The influences of a skin's vertices, ready to be written: the joints as places in a list, 16-bit weights that sum to
/// exactly 65535. A binding with local maps counts with their mean.
class RyGltfInfluenceWriter
{
public:
    RyGltfInfluenceWriter(const RySkinBinding *skin, int vertexCount);

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

    /// How a part of a mesh is written: `places` says for each of `bones` its place in the skin's list of joints; vertices are
    /// all of them in order without a list; at least `sets` sets of four.
    struct Part
    {
        std::vector<int> places;
        const std::vector<int> *vertexOfSplit = nullptr;
        size_t sets = 1;
    };
    size_t setsNeeded(const std::vector<int> *vertexOfSplit) const;
    using Numbers = std::vector<std::uint32_t>;
    /// Numbers of JOINTS_n and WEIGHTS_n, set by set. A vertex that nothing moves is held by the first joint, since the format
    /// has no other way to say so.
    std::vector<std::pair<Numbers, Numbers>> numbersOf(const Part &part) const;
    /// Adds the accessors and gives their attributes.
    std::vector<std::pair<std::string, int>> addTo(RyGltfDocument &document, const Part &part) const;
    /// Joints of all bones as a map says them.
    std::vector<int> placesIn(const std::map<const RyNode *, int> &placeOf) const;

private:
    std::vector<const RyNode *> m_bones;
    std::vector<size_t> m_first; // per vertex, and one behind
    std::vector<Influence> m_influences;
};
