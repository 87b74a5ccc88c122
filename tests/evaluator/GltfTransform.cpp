#include "evaluator/GltfTransform.h"

#include <Eigen/SVD>
#include <nlohmann/json.hpp>

#include <limits>
#include <stdexcept>
#include <vector>

namespace {

Eigen::Matrix3d nearestTurn(const Eigen::Matrix3d &map)
{
    const Eigen::JacobiSVD<Eigen::Matrix3d> svd(map, Eigen::ComputeFullU | Eigen::ComputeFullV);
    const double last = (svd.matrixU() * svd.matrixV().transpose()).determinant() < 0 ? -1 : 1;
    return svd.matrixU() * Eigen::Vector3d(1, 1, last).asDiagonal() * svd.matrixV().transpose();
}

} // namespace

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

GltfTransform GltfTransform::nearestTo(const Eigen::Matrix4d &map)
{
    // For a turn the best factors are known, and for factors the best turn: by turns neither makes it worse. From many
    // starts, since one may end beside the best.
    const Eigen::Matrix3d linear = map.topLeftCorner<3, 3>();
    GltfTransform best;
    double least = std::numeric_limits<double>::infinity();
    for (int start = 0; start < 27 && least > 1e-9 * linear.norm(); ++start) {
        const Eigen::Vector3d axes(start % 3 - 1, start / 3 % 3 - 1, start / 9 - 1);
        Eigen::Matrix3d turn = nearestTurn(linear);
        if (axes.norm() > 0)
            turn = Eigen::AngleAxisd(1.0, axes.normalized()) * turn;
        Eigen::Vector3d factors;
        double change = 1;
        for (int step = 0; step < 300 && change > 1e-13; ++step) {
            factors = (turn.transpose() * linear).diagonal();
            const Eigen::Matrix3d better = nearestTurn(linear * factors.asDiagonal());
            change = (better - turn).norm();
            turn = better;
        }
        factors = (turn.transpose() * linear).diagonal();
        const double missed = (linear - turn * factors.asDiagonal()).norm();
        if (missed < least - 1e-9 * linear.norm()) { // of equal ones the first
            least = missed;
            best.rotation = Eigen::Quaterniond(turn).coeffs();
            best.scale = factors;
        }
    }
    best.translation = map.topRightCorner<3, 1>();
    return best;
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
