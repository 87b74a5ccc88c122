#pragma once

#include <Eigen/Geometry>
#include <nlohmann/json_fwd.hpp>

/// Where a node stands relative to its parent: scaled first, then turned, then shifted.
struct GltfTransform
{
    Eigen::Vector3d translation = Eigen::Vector3d::Zero();
    Eigen::Vector4d rotation{0, 0, 0, 1}; ///< x y z w, of any length; all zero for no turn
    Eigen::Vector3d scale = Eigen::Vector3d::Ones();

    /// Of a node that is not given as a matrix. Throws std::runtime_error where it has the wrong count of numbers.
    static GltfTransform ofNode(const nlohmann::json &node);

    /// The one whose matrix differs least from a map for column vectors, by the sum of the squares of all numbers. Its
    /// shift is that of the map.
    static GltfTransform nearestTo(const Eigen::Matrix4d &map);

    /// For column vectors.
    Eigen::Matrix4d matrix() const;
};
