#pragma once

#include "rycore/io/gltf/document/RyGltfModel.h"

#include <array>

/// A map as a node of a file holds it. `local`: of row vectors, from the node to its parent.
RyGltfTransform ryGltfMatrixOf(const RyAffine &local);
/// Translation, rotation and scale of a map, with `signs` of the scale where they fit its reflection. `exact` tells
/// whether they can say it; otherwise they are the nearest.
RyGltfTransform ryGltfTransformOf(const RyAffine &local, const std::array<double, 3> &signs, bool *exact);
