#include "pluginsource/RyJointTools/operations/listBindingWeights.h"

#include <algorithm>

std::vector<RyBindingWeights> listBindingWeights(const std::vector<RyRef<RyWeightMap>> &maps,
                                                 const std::vector<int> &bindingOfMap, int vertexCount)
{
    std::vector<RyBindingWeights> list;
    list.reserve(maps.size());
    for (size_t i = 0; i < maps.size(); ++i) {
        const int *vertices = maps[i]->getAffectedIndices();
        const int *end = std::lower_bound(vertices, vertices + maps[i]->getNumAffected(), vertexCount);
        list.push_back({vertices, maps[i]->getAffectedWeights(), int(end - vertices), bindingOfMap[i]});
    }
    return list;
}
