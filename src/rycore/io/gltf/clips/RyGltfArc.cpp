#include "rycore/io/gltf/clips/RyGltfArc.h"

#include <algorithm>

std::optional<RyGltfArc> RyGltfArc::find(const RyGltfMotionPiece &piece, const Eigen::Vector3d &point, double factor)
{
    const std::optional<Eigen::Vector3d> turning = piece.angularVelocity();
    const auto scale = piece.straightScale();
    if (!turning || !scale)
        return std::nullopt;
    RyGltfArc arc;
    if (turning->isZero(0.0))
        return arc;
    // In the turned frame. What is straight is longest at one of its ends.
    const auto inwards = [&](const Eigen::Vector3d &size) {
        return factor * turning->cross(turning->cross(size.cwiseProduct(point))).norm();
    };
    arc.m_bend = inwards(scale->from);
    if (!scale->perSecond.isZero(0.0)) {
        arc.m_bend = std::max(arc.m_bend, inwards(scale->to)) +
                     2.0 * factor * turning->cross(scale->perSecond.cwiseProduct(point)).norm();
    }
    return arc;
}
