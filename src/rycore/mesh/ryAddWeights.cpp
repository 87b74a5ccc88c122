#include "rycore/mesh/ryAddWeights.h"

#include "rycore/mesh/RyWeightMap.h"

#include <algorithm>

void ryAddWeights(const RyWeightMap *source, RyWeightMap *target)
{
    if (!source || !target || source->getNumWeights() != target->getNumWeights() || source->getNumAffected() == 0)
        return;
    struct Weights
    {
        explicit Weights(const RyWeightMap *map)
            : index(map->getAffectedIndices()), end(index + map->getNumAffected()), weight(map->getAffectedWeights())
        {}
        const int *index;
        const int *end;
        const quint16 *weight;
    };
    Weights a(target);
    Weights b(source);
    std::vector<int> indices;
    std::vector<quint16> weights;
    const size_t most = size_t(target->getNumAffected()) + size_t(source->getNumAffected());
    indices.reserve(most);
    weights.reserve(most);
    while (a.index != a.end || b.index != b.end) {
        const int next = std::min(a.index != a.end ? *a.index : *b.index, b.index != b.end ? *b.index : *a.index);
        int sum = 0;
        for (Weights *each : {&a, &b}) {
            if (each->index != each->end && *each->index == next) {
                sum += *each->weight++;
                ++each->index;
            }
        }
        indices.push_back(next);
        weights.push_back(quint16(std::min(sum, int(RyWeightMap::FullWeight))));
    }
    target->beginEdit();
    target->setAffected(target->getNumWeights(), std::move(indices), std::move(weights));
    target->finishEdit();
}
