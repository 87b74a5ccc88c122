#include "rycore/io/gltf/RyGltfInfluenceWriter.h"

#include "rycore/io/gltf/RyGltfDocument.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"

#include <algorithm>

namespace {

/// Weights that sum to 65535, in descending order; what rounding leaves goes to the largest.
void normalize(std::vector<std::pair<int, int>> &influences)
{
    std::stable_sort(influences.begin(), influences.end(),
                     [](const auto &a, const auto &b) { return a.second > b.second; });
    long long sum = 0;
    for (const auto &influence : influences)
        sum += influence.second;
    if (sum <= 0 || sum == 65535)
        return;
    long long total = 0;
    for (auto &influence : influences) {
        influence.second = int((influence.second * 65535LL + sum / 2) / sum);
        total += influence.second;
    }
    influences.front().second += int(65535 - total);
}

} // namespace

RyGltfInfluenceWriter::RyGltfInfluenceWriter(const RySkinBinding *skin, int vertexCount,
                                             const std::map<const RyNode *, int> &placeOf)
    : m_ofVertex(size_t(vertexCount))
{
    for (const RyBoneBinding *binding : skin ? skin->bindings() : std::vector<RyBoneBinding *>()) {
        const auto place = placeOf.find(binding->getBone());
        if (place == placeOf.end())
            continue;
        std::map<int, int> sums; // of local maps, three times the weight
        const auto add = [&](const RyWeightMap *map, int factor) {
            for (int i = 0; map && i < map->getNumAffected(); ++i)
                sums[map->getAffectedIndices()[i]] += factor * int(map->getAffectedWeights()[i]);
        };
        if (binding->getWeights()) {
            add(binding->getWeights(), 3);
        } else {
            for (int axis = 0; axis < 3; ++axis)
                add(binding->getLocalWeights(axis), 1);
        }
        for (const auto &[vertex, sum] : sums) {
            if (vertex < vertexCount && sum >= 2)
                m_ofVertex[size_t(vertex)].emplace_back(place->second, (sum + 1) / 3);
        }
    }
    for (auto &influences : m_ofVertex)
        normalize(influences);
}

std::vector<std::pair<std::string, int>> RyGltfInfluenceWriter::addTo(RyGltfDocument &document,
                                                                      const std::vector<int> *vertexOfSplit) const
{
    const size_t count = vertexOfSplit ? vertexOfSplit->size() : m_ofVertex.size();
    const auto of = [&](size_t i) -> const std::vector<std::pair<int, int>> & {
        return m_ofVertex[vertexOfSplit ? size_t((*vertexOfSplit)[i]) : i];
    };
    size_t most = 1;
    for (size_t i = 0; i < count; ++i)
        most = std::max(most, of(i).size());
    std::vector<std::pair<std::string, int>> attributes;
    for (size_t set = 0; set < (most + 3) / 4; ++set) {
        std::vector<std::uint32_t> joints, weights;
        joints.reserve(4 * count);
        weights.reserve(4 * count);
        for (size_t v = 0; v < count; ++v) {
            const auto &influences = of(v);
            for (size_t i = 4 * set; i < 4 * set + 4; ++i) {
                const bool isHeld = influences.empty() && i == 0;
                joints.push_back(i < influences.size() ? std::uint32_t(influences[i].first) : 0u);
                weights.push_back(i < influences.size() ? std::uint32_t(influences[i].second) : isHeld ? 65535u : 0u);
            }
        }
        attributes.emplace_back("JOINTS_" + std::to_string(set), document.addUintAccessor(joints, 4, 5123, 34962));
        attributes.emplace_back("WEIGHTS_" + std::to_string(set), document.addUintAccessor(weights, 4, 5123, 34962, true));
    }
    return attributes;
}
