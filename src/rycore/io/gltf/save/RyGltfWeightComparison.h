#pragma once

#include "rycore/io/gltf/extras/RyGltfOrigin.h"

#include <vector>

/// Whether weights, or which bones have some, are others than those that were read. `changed`, where given one entry
/// for each vertex, gets the vertices.
bool ryGltfWeightsChanged(const RyGltfFigureSource &figure, std::vector<bool> *changed = nullptr);
