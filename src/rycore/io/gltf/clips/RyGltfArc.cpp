#include "rycore/io/gltf/clips/RyGltfArc.h"

std::optional<RyGltfArc> RyGltfArc::find(const RyGltfMotionPiece &piece, const Eigen::Vector3d &point,
                                         const Eigen::Matrix3d &after)
{
    const std::optional<Eigen::Vector3d> velocity = piece.angularVelocity();
    const std::optional<Eigen::Vector3d> scale = piece.steadyScale();
    if (!velocity || !scale)
        return std::nullopt;
    RyGltfArc arc;
    arc.m_speed = velocity->norm();
    if (arc.m_speed > 0.0)
        arc.m_radius = (after * velocity->cross(scale->cwiseProduct(point))).norm() / arc.m_speed;
    return arc;
}
