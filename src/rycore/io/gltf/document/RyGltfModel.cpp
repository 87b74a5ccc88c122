#include "rycore/io/gltf/document/RyGltfModel.h"

#include <algorithm>
#include <cmath>

RyAffine RyGltfTransform::toAffine() const
{
    RyAffine result;
    if (hasMatrix) {
        for (int row = 0; row < 4; ++row) {
            for (int column = 0; column < 3; ++column)
                result.m[row][column] = matrix[std::size_t(4 * row + column)];
        }
        return result;
    }
    double q[4] = {rotation[0], rotation[1], rotation[2], rotation[3]};
    const double length = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
    if (length > 1e-12) {
        for (double &number : q)
            number /= length;
    } else {
        q[0] = q[1] = q[2] = 0.0;
        q[3] = 1.0;
    }
    const double x = q[0], y = q[1], z = q[2], w = q[3];
    // Rows are the images of the unit axes.
    const double rows[3][3] = {{1 - 2 * (y * y + z * z), 2 * (x * y + z * w), 2 * (x * z - y * w)},
                               {2 * (x * y - z * w), 1 - 2 * (x * x + z * z), 2 * (y * z + x * w)},
                               {2 * (x * z + y * w), 2 * (y * z - x * w), 1 - 2 * (x * x + y * y)}};
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            result.m[row][column] = scale[std::size_t(row)] * rows[row][column];
        result.m[3][row] = translation[std::size_t(row)];
    }
    return result;
}

size_t RyGltfMesh::targetCount() const
{
    size_t count = 0;
    for (const RyGltfPrimitive &primitive : primitives)
        count = std::max(count, primitive.morphPositions.size());
    return count;
}
