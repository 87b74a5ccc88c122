#include "rycore/io/gltf/clips/RyGltfTransforms.h"

#include "rycore/io/gltf/clips/RyGltfParts.h"

#include <cmath>

RyGltfTransform ryGltfMatrixOf(const RyAffine &local)
{
    RyGltfTransform transform;
    transform.hasMatrix = true;
    for (size_t row = 0; row < 4; ++row) {
        for (size_t column = 0; column < 3; ++column)
            transform.matrix[4 * row + column] = local.m[row][column];
        transform.matrix[4 * row + 3] = row == 3 ? 1.0 : 0.0;
    }
    return transform;
}

RyGltfTransform ryGltfTransformOf(const RyAffine &local, const std::array<double, 3> &signs, bool *exact)
{
    const Eigen::Affine3d map = ryGltfColumns(local);
    const RyGltfParts parts = RyGltfParts::nearest(map, Eigen::Vector3d(signs.data()));
    RyGltfTransform transform = parts.transform();
    for (double &factor : transform.scale) {
        if (std::abs(factor - 1.0) < 1e-6)
            factor = 1.0;
    }
    const Eigen::Matrix3d missed = map.linear() - parts.map().linear();
    *exact = missed.cwiseAbs().maxCoeff() <= 1e-5 * parts.scale.cwiseAbs().maxCoeff();
    return transform;
}
