#include "evaluator/GltfTransform.h"

#include <nlohmann/json.hpp>

#include <stdexcept>
#include <vector>

GltfTransform GltfTransform::ofNode(const nlohmann::json &node)
{
    const auto t = node.value("translation", std::vector<double>{0, 0, 0});
    const auto r = node.value("rotation", std::vector<double>{0, 0, 0, 1});
    const auto s = node.value("scale", std::vector<double>{1, 1, 1});
    if (t.size() != 3 || r.size() != 4 || s.size() != 3)
        throw std::runtime_error("a node's transform has the wrong count of numbers");
    GltfTransform transform;
    transform.translation = Eigen::Map<const Eigen::Vector3d>(t.data());
    transform.rotation = Eigen::Map<const Eigen::Vector4d>(r.data());
    transform.scale = Eigen::Map<const Eigen::Vector3d>(s.data());
    return transform;
}

Eigen::Matrix4d GltfTransform::matrix() const
{
    // The turn of a unit quaternion, written out.
    const double length = rotation.norm();
    const Eigen::Vector4d unit = length > 0 ? Eigen::Vector4d(rotation / length) : Eigen::Vector4d(0, 0, 0, 1);
    const double x = unit[0], y = unit[1], z = unit[2], w = unit[3];
    Eigen::Matrix4d m = Eigen::Matrix4d::Identity();
    m.topLeftCorner<3, 3>() << 1 - 2 * (y * y + z * z), 2 * (x * y - z * w), 2 * (x * z + y * w), //
        2 * (x * y + z * w), 1 - 2 * (x * x + z * z), 2 * (y * z - x * w),                        //
        2 * (x * z - y * w), 2 * (y * z + x * w), 1 - 2 * (x * x + y * y);
    for (int k = 0; k < 3; ++k) {
        m.col(k).head<3>() *= scale[k];
        m(k, 3) = translation[k];
    }
    return m;
}
