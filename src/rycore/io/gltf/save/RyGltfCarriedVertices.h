#pragma once

#include "rycore/io/gltf/extras/RyGltfFigureSource.h"

/// How the vertices of a figure were turned and scaled by poses that became its rest, each by its bones: exact after
/// one such pose, near after several. Empty where no bone was carried on.
std::vector<RyGltfLinear> ryGltfCarriedLinear(const RyNode &figure, int vertexCount);
