#include "rycore/io/gltf/document/RyGltfMatrices.h"

#include <cmath>

double ryGltfSize(const RyAffine &map)
{
    return std::cbrt(std::abs(map.determinant()));
}

void ryGltfAppendMatrix(const RyAffine &map, std::vector<float> &values)
{
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 3; ++column)
            values.push_back(float(map.m[row][column]));
        values.push_back(row == 3 ? 1.0f : 0.0f);
    }
}

RyAffine ryGltfMatrixAt(std::span<const float> values, size_t index)
{
    RyAffine map;
    for (size_t row = 0; row < 4; ++row) {
        for (size_t column = 0; column < 3; ++column)
            map.m[row][column] = double(values[16 * index + 4 * row + column]);
    }
    return map;
}
