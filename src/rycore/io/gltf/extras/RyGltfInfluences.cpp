#include "rycore/io/gltf/extras/RyGltfInfluences.h"

#include "rycore/mesh/RyWeightQuantizer.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/parametric/fit/RyLegacyFit.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"

#include <algorithm>
#include <map>

namespace {

using Influence = RyGltfInfluences::Influence;

/// The place of a bone among those with the same weights.
struct Copy
{
    size_t number = 0;
    size_t count = 1;
};

std::vector<Copy> findCopies(const std::vector<RyGltfBoneWeights> &maps)
{
    std::vector<Copy> copies(maps.size());
    std::multimap<size_t, size_t> firsts; // of bones with the same weights, by how many they are
    std::vector<std::vector<size_t>> same(maps.size());
    for (size_t bone = 0; bone < maps.size(); ++bone) {
        const auto [from, to] = firsts.equal_range(maps[bone].weights.vertices.size());
        const auto first = std::find_if(
            from, to, [&](const auto &entry) { return maps[entry.second].weights.isSameAs(maps[bone].weights); });
        if (first == to)
            firsts.emplace(maps[bone].weights.vertices.size(), bone);
        same[first == to ? bone : first->second].push_back(bone);
    }
    for (const std::vector<size_t> &bones : same) {
        for (size_t i = 0; i < bones.size(); ++i)
            copies[bones[i]] = {i, bones.size()};
    }
    return copies;
}

quint64 sumOf(std::span<const Influence> influences)
{
    quint64 sum = 0;
    for (const Influence &influence : influences)
        sum += influence.weight;
    return sum;
}

void shareAmongCopies(std::span<Influence> influences, const std::vector<Copy> &copies)
{
    if (sumOf(influences) <= RyWeightMap::FullWeight)
        return;
    for (Influence &influence : influences) {
        const Copy &copy = copies[influence.bone];
        influence.weight =
            quint16(influence.weight / copy.count + (copy.number < influence.weight % copy.count ? 1 : 0));
    }
}

/// Weights that sum to full weight, in descending order.
void normalize(Influence *begin, size_t count)
{
    std::stable_sort(begin, begin + count, [](const Influence &a, const Influence &b) { return a.weight > b.weight; });
    const quint64 sum = sumOf({begin, count});
    if (sum == 0 || sum == RyWeightMap::FullWeight)
        return;
    using RyWeightQuantizer::Rounding;
    RyWeightQuantizer::LargestTakesRest<quint64> quantizer(
        sum, count <= RyWeightQuantizer::MostToNearest ? Rounding::Nearest : Rounding::Down);
    for (size_t i = 0; i < count; ++i)
        quantizer.add(i, begin[i].weight);
    for (size_t i = 0; i < count; ++i)
        begin[i].weight = quantizer.quantized(i, begin[i].weight);
}

} // namespace

RyGltfBindingWeights::RyGltfBindingWeights(const RyBoneBinding &binding)
{
    if (const RyWeightMap *map = binding.getWeights()) {
        vertices = {map->getAffectedIndices(), size_t(map->getNumAffected())};
        weights = {map->getAffectedWeights(), size_t(map->getNumAffected())};
        return;
    }
    std::map<int, int> sums;
    for (int axis = 0; axis < 3; ++axis) {
        const RyWeightMap *map = binding.getLocalWeights(axis);
        for (int i = 0; map && i < map->getNumAffected(); ++i)
            sums[map->getAffectedIndices()[i]] += int(map->getAffectedWeights()[i]);
    }
    for (const auto &[vertex, sum] : sums) {
        if (sum < 2)
            continue;
        m_vertices.push_back(vertex);
        m_weights.push_back(quint16((sum + 1) / 3));
    }
    vertices = m_vertices;
    weights = m_weights;
}

bool RyGltfBindingWeights::isSameAs(const RyGltfBindingWeights &o) const
{
    return std::equal(vertices.begin(), vertices.end(), o.vertices.begin(), o.vertices.end()) &&
           std::equal(weights.begin(), weights.end(), o.weights.begin(), o.weights.end());
}

std::vector<RyGltfBoneWeights> ryGltfBoneWeights(const RyNode *figure)
{
    std::vector<RyGltfBoneWeights> all;
    const auto *skeleton = qobject_cast<const RySkeleton *>(figure);
    const RySkinBinding *skin = RySkinBinding::findSkin(skeleton);
    for (const RyBoneBinding *binding : skin ? skin->bindings() : std::vector<RyBoneBinding *>()) {
        const RyNode *bone = binding->getBone();
        if (bone && bone->getSkeleton() == figure) // the others move nothing in a file
            all.push_back({bone, RyGltfBindingWeights(*binding)});
    }
    const RyLegacyBinding *joints = skin ? nullptr : RyLegacyBinding::findBinding(skeleton);
    if (!joints || !joints->keptFit())
        return all;
    for (const RyLegacyFit::Bone &each : joints->keptFit()->bones) {
        if (each.bone && each.bone->getSkeleton() == figure)
            all.push_back({each.bone, RyGltfBindingWeights(each.vertices, each.weights)});
    }
    return all;
}

RyGltfInfluences::RyGltfInfluences(const RyNode *figure, int vertexCount) : m_first(size_t(vertexCount) + 1, 0)
{
    const std::vector<RyGltfBoneWeights> maps = ryGltfBoneWeights(figure);
    for (const RyGltfBoneWeights &each : maps) {
        m_bones.push_back(each.bone);
        for (const int vertex : each.weights.vertices) {
            if (vertex < vertexCount)
                ++m_first[size_t(vertex) + 1];
        }
    }
    for (size_t vertex = 0; vertex < size_t(vertexCount); ++vertex)
        m_first[vertex + 1] += m_first[vertex];
    m_influences.resize(m_first.back());
    std::vector<size_t> next(m_first.begin(), m_first.end() - 1);
    for (size_t bone = 0; bone < maps.size(); ++bone) {
        for (size_t i = 0; i < maps[bone].weights.vertices.size(); ++i) {
            const int vertex = maps[bone].weights.vertices[i];
            if (vertex < vertexCount)
                m_influences[next[size_t(vertex)]++] = {quint16(bone), maps[bone].weights.weights[i]};
        }
    }
    const std::vector<Copy> copies = findCopies(maps);
    size_t end = 0; // what rounds to nothing leaves gaps, which are closed on the way
    for (size_t vertex = 0; vertex < size_t(vertexCount); ++vertex) {
        const size_t from = m_first[vertex];
        const size_t count = m_first[vertex + 1] - from;
        shareAmongCopies({m_influences.data() + from, count}, copies);
        normalize(m_influences.data() + from, count);
        m_first[vertex] = end;
        for (size_t i = 0; i < count; ++i) {
            if (m_influences[from + i].weight > 0)
                m_influences[end++] = m_influences[from + i];
        }
    }
    m_first.back() = end;
    m_influences.resize(end);
}

std::vector<int> RyGltfInfluences::placesIn(const RyGltfNodeIndex &placeOf) const
{
    std::vector<int> places;
    for (const RyNode *bone : m_bones)
        places.push_back(std::max(0, placeOf.of(bone)));
    return places;
}

RyMapExtras::Fingerprint RyGltfInfluences::fingerprint(const RyGltfNodeIndex &nodeOf) const
{
    std::vector<int> nodes;
    for (const RyNode *bone : m_bones)
        nodes.push_back(nodeOf.of(bone));
    RyMapExtras::Fingerprint fingerprint;
    for (int vertex = 0; vertex < vertexCount(); ++vertex) {
        for (const Influence &influence : of(vertex))
            fingerprint.add(nodes[influence.bone], vertex, influence.weight);
    }
    return fingerprint;
}
