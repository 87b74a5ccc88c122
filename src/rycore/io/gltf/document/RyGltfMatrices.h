#pragma once

#include "rycore/math/RyAffine.h"

#include <span>
#include <vector>

/// By which factor a map enlarges, over all directions.
double ryGltfSize(const RyAffine &map);

/// Maps in accessors of matrices: sixteen numbers each, for row vectors row by row.
void ryGltfAppendMatrix(const RyAffine &map, std::vector<float> &values);
RyAffine ryGltfMatrixAt(std::span<const float> values, size_t index);
