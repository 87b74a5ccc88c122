#include "rycore/skin/RyWeightNormalizer.h"

#include "rycore/mesh/RyWeightMap.h"

#include <algorithm>

namespace {

constexpr quint64 Full = RyWeightMap::FullWeight;

quint16 scaled(quint16 weight, quint64 sum)
{
    return quint16(quint64(weight) * Full / sum);
}

} // namespace

void RyWeightNormalizer::normalize(const std::vector<RyWeightMap *> &maps)
{
    struct Vertex
    {
        quint64 sum = 0;
        quint64 scaledSum = 0;
        quint16 largest = 0;
        size_t largestMap = 0;
    };
    int count = 0;
    for (const RyWeightMap *map : maps)
        count = std::max(count, map->getNumWeights());
    std::vector<Vertex> vertices{size_t(count)};
    const auto walk = [&](auto visit) {
        for (size_t k = 0; k < maps.size(); ++k) {
            const int *indices = maps[k]->getAffectedIndices();
            const quint16 *weights = maps[k]->getAffectedWeights();
            const int affected = maps[k]->getNumAffected();
            for (int i = 0; i < affected; ++i)
                visit(k, vertices[size_t(indices[i])], weights[i]);
        }
    };
    walk([](size_t k, Vertex &vertex, quint16 weight) {
        vertex.sum += weight;
        if (weight > vertex.largest) {
            vertex.largest = weight;
            vertex.largestMap = k;
        }
    });
    walk([](size_t, Vertex &vertex, quint16 weight) { vertex.scaledSum += scaled(weight, vertex.sum); });

    for (size_t k = 0; k < maps.size(); ++k) {
        RyWeightMap *map = maps[k];
        const int affected = map->getNumAffected();
        std::vector<int> indices(map->getAffectedIndices(), map->getAffectedIndices() + affected);
        std::vector<quint16> weights(map->getAffectedWeights(), map->getAffectedWeights() + affected);
        bool changed = false;
        for (size_t i = 0; i < indices.size(); ++i) {
            const Vertex &vertex = vertices[size_t(indices[i])];
            if (vertex.sum == Full)
                continue;
            const quint64 rest = vertex.largestMap == k ? Full - vertex.scaledSum : 0;
            const quint16 weight = quint16(scaled(weights[i], vertex.sum) + rest);
            changed = changed || weight != weights[i];
            weights[i] = weight;
        }
        if (changed)
            map->setAffected(map->getNumWeights(), std::move(indices), std::move(weights));
    }
}

RyWeightMap *RyWeightNormalizer::mean(const QString &name, const RyWeightMap *const maps[3])
{
    int count = 0;
    for (int axis = 0; axis < 3; ++axis)
        count = maps[axis] ? std::max(count, maps[axis]->getNumWeights()) : count;
    std::vector<quint32> sums(size_t(count), 0);
    for (int axis = 0; axis < 3; ++axis) {
        for (int i = 0; maps[axis] && i < maps[axis]->getNumAffected(); ++i)
            sums[size_t(maps[axis]->getAffectedIndices()[i])] += maps[axis]->getAffectedWeights()[i];
    }
    std::vector<int> indices;
    std::vector<quint16> weights;
    for (size_t i = 0; i < sums.size(); ++i) {
        if (sums[i] > 0) {
            indices.push_back(int(i));
            weights.push_back(quint16((sums[i] + 1) / 3));
        }
    }
    auto *result = new RyWeightMap(name);
    result->setAffected(count, std::move(indices), std::move(weights));
    return result;
}
