#include "rycore/io/gltf/extras/RyGltfInfluences.h"

#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"

#include <algorithm>

namespace {

using Influence = RyGltfInfluences::Influence;

/// Weights that sum to 65535, in descending order; what rounding leaves goes to the largest. Gives their number: what
/// rounds to nothing is left out.
size_t normalize(Influence *begin, size_t count)
{
    std::stable_sort(begin, begin + count, [](const Influence &a, const Influence &b) { return a.weight > b.weight; });
    long long sum = 0;
    for (size_t i = 0; i < count; ++i)
        sum += begin[i].weight;
    if (sum <= 0 || sum == 65535)
        return count;
    long long total = 0;
    size_t kept = 0;
    for (size_t i = 0; i < count; ++i) {
        const long long scaled = (begin[i].weight * 65535LL + sum / 2) / sum;
        total += scaled;
        begin[i].weight = quint16(scaled);
        kept += scaled > 0;
    }
    begin[0].weight = quint16(begin[0].weight + 65535 - total);
    return kept;
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

bool RyGltfBindingWeights::isHeld(const RyBoneBinding &binding)
{
    const RyObject *object = binding.getSkin() ? binding.getSkin()->getObject() : nullptr;
    return binding.getBone() && object && binding.getBone()->getSkeleton() == object->getNode();
}

RyGltfInfluences::RyGltfInfluences(const RySkinBinding *skin, int vertexCount) : m_first(size_t(vertexCount) + 1, 0)
{
    std::vector<RyGltfBindingWeights> maps;
    maps.reserve(skin ? skin->bindings().size() : 0);
    for (const RyBoneBinding *binding : skin ? skin->bindings() : std::vector<RyBoneBinding *>()) {
        if (!RyGltfBindingWeights::isHeld(*binding))
            continue;
        m_bones.push_back(binding->getBone());
        maps.emplace_back(*binding);
        for (const int vertex : maps.back().vertices) {
            if (vertex < vertexCount)
                ++m_first[size_t(vertex) + 1];
        }
    }
    for (size_t vertex = 0; vertex < size_t(vertexCount); ++vertex)
        m_first[vertex + 1] += m_first[vertex];
    m_influences.resize(m_first.back());
    std::vector<size_t> next(m_first.begin(), m_first.end() - 1);
    for (size_t bone = 0; bone < maps.size(); ++bone) {
        for (size_t i = 0; i < maps[bone].vertices.size(); ++i) {
            const int vertex = maps[bone].vertices[i];
            if (vertex < vertexCount)
                m_influences[next[size_t(vertex)]++] = {quint16(bone), maps[bone].weights[i]};
        }
    }
    size_t end = 0; // what rounds to nothing leaves gaps, which are closed on the way
    for (size_t vertex = 0; vertex < size_t(vertexCount); ++vertex) {
        const size_t from = m_first[vertex];
        const size_t count = m_first[vertex + 1] - from;
        const size_t kept = count == 0 ? 0 : normalize(m_influences.data() + from, count);
        m_first[vertex] = end;
        for (size_t i = 0; i < count && kept > 0; ++i) {
            if (m_influences[from + i].weight > 0)
                m_influences[end++] = m_influences[from + i];
        }
    }
    m_first.back() = end;
    m_influences.resize(end);
}

std::vector<int> RyGltfInfluences::placesIn(const std::map<const RyNode *, int> &placeOf) const
{
    std::vector<int> places;
    for (const RyNode *bone : m_bones) {
        const auto place = placeOf.find(bone);
        places.push_back(place == placeOf.end() ? 0 : place->second);
    }
    return places;
}
