#include "rycore/skin/RyWeightNormalizer.h"

#include "rycore/mesh/RyWeightQuantizer.h"

#include <algorithm>

void RyWeightNormalizer::normalize(const std::vector<RyWeightMap *> &maps)
{
    int count = 0;
    for (const RyWeightMap *map : maps)
        count = std::max(count, map->getNumWeights());
    std::vector<quint64> sums(size_t(count), 0);
    for (const RyWeightMap *map : maps) {
        const int *indices = map->getAffectedIndices();
        const quint16 *weights = map->getAffectedWeights();
        const int affected = map->getNumAffected();
        for (int i = 0; i < affected; ++i)
            sums[size_t(indices[i])] += weights[i];
    }

    // After most edits only few vertices need anything: all that follows is about them.
    std::vector<RyWeightQuantizer::LargestTakesRest<quint64>> open;
    std::vector<int> places; // of a vertex among them, -1 for none
    for (size_t v = 0; v < sums.size(); ++v) {
        if (sums[v] == 0 || sums[v] == RyWeightMap::FullWeight)
            continue;
        places.resize(sums.size(), -1);
        places[v] = int(open.size());
        open.emplace_back(sums[v], RyWeightQuantizer::Rounding::Down);
    }
    if (open.empty())
        return;
    std::vector<std::vector<int>> touched(maps.size()); // entries of open vertices
    for (size_t k = 0; k < maps.size(); ++k) {
        const int *indices = maps[k]->getAffectedIndices();
        const quint16 *weights = maps[k]->getAffectedWeights();
        const int affected = maps[k]->getNumAffected();
        for (int i = 0; i < affected; ++i) {
            const int place = places[size_t(indices[i])];
            if (place < 0)
                continue;
            touched[k].push_back(i);
            open[size_t(place)].add(k, weights[i]);
        }
    }
    for (size_t k = 0; k < maps.size(); ++k) {
        if (touched[k].empty())
            continue;
        RyWeightMap *map = maps[k];
        const int affected = map->getNumAffected();
        std::vector<int> indices(map->getAffectedIndices(), map->getAffectedIndices() + affected);
        std::vector<quint16> weights(map->getAffectedWeights(), map->getAffectedWeights() + affected);
        bool changed = false;
        for (const int i : touched[k]) {
            const auto &vertex = open[size_t(places[size_t(indices[size_t(i)])])];
            const quint16 weight = vertex.quantized(k, weights[size_t(i)]);
            changed = changed || weight != weights[size_t(i)];
            weights[size_t(i)] = weight;
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
