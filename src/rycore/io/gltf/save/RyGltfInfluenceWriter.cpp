#include "rycore/io/gltf/save/RyGltfInfluenceWriter.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/mesh/RyWeightMap.h"

#include <algorithm>

size_t RyGltfInfluenceWriter::setsNeeded(const std::vector<int> *vertexOfSplit) const
{
    size_t most = 1;
    const size_t count = vertexOfSplit ? vertexOfSplit->size() : size_t(m_influences.vertexCount());
    for (size_t i = 0; i < count; ++i)
        most = std::max(most, m_influences.of(vertexOfSplit ? (*vertexOfSplit)[i] : int(i)).size());
    return (most + 3) / 4;
}

std::vector<std::pair<RyGltfInfluenceWriter::Numbers, RyGltfInfluenceWriter::Numbers>>
RyGltfInfluenceWriter::numbersOf(const Part &part) const
{
    const size_t count = part.vertexOfSplit ? part.vertexOfSplit->size() : size_t(m_influences.vertexCount());
    std::vector<std::pair<Numbers, Numbers>> result(part.sets);
    for (auto &[joints, weights] : result) {
        joints.assign(4 * count, 0);
        weights.assign(4 * count, 0);
    }
    for (size_t v = 0; v < count; ++v) {
        const std::span<const RyGltfInfluences::Influence> influences =
            m_influences.of(part.vertexOfSplit ? (*part.vertexOfSplit)[v] : int(v));
        if (influences.empty())
            result.front().second[4 * v] = RyWeightMap::FullWeight;
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
