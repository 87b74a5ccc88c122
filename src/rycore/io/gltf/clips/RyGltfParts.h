#pragma once

#include "rycore/io/gltf/document/RyGltfModel.h"

#include <Eigen/Geometry>

/// A local transform as nodes and clips of a file hold it: scale acts first, then rotation, then translation. Maps are
/// those of column vectors.
struct RyGltfParts
{
    Eigen::Vector3d translation = Eigen::Vector3d::Zero();
    Eigen::Quaterniond rotation = Eigen::Quaterniond::Identity();
    Eigen::Vector3d scale = Eigen::Vector3d::Ones();

    /// The nearest to a finite map; `signs` of the scale are taken where they fit its reflection. Exact but for shear.
    static RyGltfParts nearest(const Eigen::Affine3d &map, const Eigen::Vector3d &signs = Eigen::Vector3d::Ones());
    /// The same for a map without shear, and faster; of any other it gives some map beside it.
    static RyGltfParts straight(const Eigen::Affine3d &map, const Eigen::Vector3d &signs);
    /// Of a node; a matrix is taken apart.
    static RyGltfParts of(const RyGltfTransform &transform);

    Eigen::Affine3d map() const;
    RyGltfTransform transform() const;
};

Eigen::Affine3d ryGltfColumns(const RyAffine &rows);

/// As a player has it between two keys: each part by itself, rotations the shorter way.
RyGltfParts ryGltfBetween(const RyGltfParts &a, const RyGltfParts &b, double share);

/// How far two maps take one point within `reach` of the origin from each other, at most. Infinite
/// where one of them is not finite.
double ryGltfDistance(const Eigen::Affine3d &a, const Eigen::Affine3d &b, double reach);
