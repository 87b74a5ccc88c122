#include "rycore/io/gltf/RyGltfInfluenceWriter.h"

#include "rycore/io/gltf/RyGltfDocument.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"

#include <algorithm>

namespace {

using Influence = RyGltfInfluenceWriter::Influence;

/// Weights that sum to 65535, in descending order; what rounding leaves goes to the largest. Gives their number: what rounds to
/// nothing is left out.
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

RyGltfInfluenceWriter::RyGltfInfluenceWriter(const RySkinBinding *skin, int vertexCount)
    : m_first(size_t(vertexCount) + 1, 0)
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

size_t RyGltfInfluenceWriter::setsNeeded(const std::vector<int> *vertexOfSplit) const
{
    size_t most = 1;
    const size_t count = vertexOfSplit ? vertexOfSplit->size() : m_first.size() - 1;
    for (size_t i = 0; i < count; ++i)
        most = std::max(most, of(vertexOfSplit ? (*vertexOfSplit)[i] : int(i)).size());
    return (most + 3) / 4;
}

std::vector<std::pair<RyGltfInfluenceWriter::Numbers, RyGltfInfluenceWriter::Numbers>>
RyGltfInfluenceWriter::numbersOf(const Part &part) const
{
    const size_t count = part.vertexOfSplit ? part.vertexOfSplit->size() : m_first.size() - 1;
    std::vector<std::pair<Numbers, Numbers>> result(part.sets);
    for (auto &[joints, weights] : result) {
        joints.assign(4 * count, 0);
        weights.assign(4 * count, 0);
    }
    for (size_t v = 0; v < count; ++v) {
        const std::span<const Influence> influences = of(part.vertexOfSplit ? (*part.vertexOfSplit)[v] : int(v));
        if (influences.empty())
            result.front().second[4 * v] = 65535;
        for (size_t i = 0; i < influences.size() && i < 4 * part.sets; ++i) {
            result[i / 4].first[4 * v + i % 4] = std::uint32_t(part.places[influences[i].bone]);
            result[i / 4].second[4 * v + i % 4] = influences[i].weight;
        }
    }
    return result;
}

std::vector<std::pair<std::string, int>> RyGltfInfluenceWriter::addTo(RyGltfDocument &document, const Part &part) const
{
    std::vector<std::pair<std::string, int>> attributes;
    for (const auto &[joints, weights] : numbersOf(part)) {
        const std::string set = std::to_string(attributes.size() / 2);
        attributes.emplace_back("JOINTS_" + set, document.addUintAccessor(joints, 4, 5123, 34962));
        attributes.emplace_back("WEIGHTS_" + set, document.addUintAccessor(weights, 4, 5123, 34962, true));
    }
    return attributes;
}

std::vector<int> RyGltfInfluenceWriter::placesIn(const std::map<const RyNode *, int> &placeOf) const
{
    std::vector<int> places;
    for (const RyNode *bone : m_bones) {
        const auto place = placeOf.find(bone);
        places.push_back(place == placeOf.end() ? 0 : place->second);
    }
    return places;
}
