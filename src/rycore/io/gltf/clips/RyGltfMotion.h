#pragma once

#include "rycore/io/gltf/clips/RyGltfClips.h"
#include "rycore/io/gltf/clips/RyGltfParts.h"

#include <optional>

/// How a node moves within its parent while a clip plays: curves of what the clip drives, the node's own values of the
/// rest.
struct RyGltfMotion
{
    std::array<std::shared_ptr<const RyGltfCurve>, 3> curves; ///< by RyGltfPath
    RyGltfParts rest;
    std::optional<Eigen::Affine3d> matrix; ///< of a node that is given as one; no clip drives such

    const RyGltfCurve *curve(RyGltfPath path) const { return curves[size_t(path)].get(); }
    bool isDriven() const { return curves[0] || curves[1] || curves[2]; }
};

/// A motion between two times that have no key of it between them; see RyGltfCurvePiece.
class RyGltfMotionPiece
{
public:
    /// The keys before it of the three curves.
    using Keys = std::array<size_t, 3>;
    /// `near`: of a piece that is not far away.
    RyGltfMotionPiece(const RyGltfMotion &motion, float from, float to, const Keys &near = {});
    Keys keys() const;

    Eigen::Vector3d translation(double time) const;
    Eigen::Quaterniond rotation(double time) const;
    Eigen::Vector3d scale(double time) const;
    RyGltfParts parts(double time) const { return {translation(time), rotation(time), scale(time)}; }
    Eigen::Affine3d map(double time) const;

    /// See RyGltfCurvePiece; zero where nothing drives the rotation.
    std::optional<Eigen::Vector3d> angularVelocity() const;
    /// See RyGltfCurvePiece.
    std::optional<RyGltfCurvePiece::Line> straightScale() const;

private:
    const RyGltfMotion &m_motion;
    std::array<std::optional<RyGltfCurvePiece>, 3> m_pieces;
};
