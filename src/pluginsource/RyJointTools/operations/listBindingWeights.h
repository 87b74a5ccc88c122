#pragma once

#include "rycore/base/RyRefCounted.h"
#include "rycore/mesh/RyWeightMap.h"

#include <vector>

/// Weights of some vertices, ascending, that count for one binding. Valid while the map stays that they are of.
struct RyBindingWeights
{
    const int *vertices;
    const quint16 *weights;
    int count;
    int binding;
};

/// The weights of each map, for the binding `bindingOfMap` of the same place, without those of vertices that a mesh of
/// so many does not have. Threads may read what is listed, though not the maps: these make their lists when asked.
std::vector<RyBindingWeights> listBindingWeights(const std::vector<RyRef<RyWeightMap>> &maps,
                                                 const std::vector<int> &bindingOfMap, int vertexCount);
