#pragma once

#include "rycore/mesh/RyWeightMap.h"

#include <algorithm>
#include <vector>

/// A map with these weights, one for each vertex.
inline RyWeightMap *ryMapOf(const std::vector<quint16> &weights, const QString &name = QString())
{
    auto *map = new RyWeightMap(name);
    map->setNumWeights(int(weights.size()));
    map->beginEdit();
    std::copy(weights.begin(), weights.end(), map->getWeights());
    map->finishEdit();
    return map;
}
