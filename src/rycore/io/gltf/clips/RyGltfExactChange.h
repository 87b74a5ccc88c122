#pragma once

#include "rycore/io/gltf/clips/RyGltfMotion.h"

#include <optional>

/// A change of a node's frame by constant maps on both sides that translation, rotation and scale can follow: new =
/// after * old * before, for column vectors. Rotations and scales keep their keys and interpolation, translations as
/// well unless the node's origin was moved in its own frame and turns about the old one.
class RyGltfExactChange
{
public:
    /// None where the result would be sheared by more than `slack`, of its size. `tolerance` in units of the parent.
    static std::optional<RyGltfExactChange> find(const RyGltfMotion &motion, const Eigen::Affine3d &before,
                                                 const Eigen::Affine3d &after, double tolerance, double slack);
    RyGltfMotion apply(const RyGltfMotion &motion) const;

private:
    using Curve = std::shared_ptr<const RyGltfCurve>;

    bool findTurn(const RyGltfMotion &motion, const Eigen::Matrix3d &turn, double slack);
    static Curve withoutHalfTurns(const Curve &curve);
    Curve rotations(const RyGltfMotion &motion) const;
    Curve scales(const Curve &curve) const;
    Curve translations(const RyGltfMotion &motion) const;
    bool isArc(const RyGltfMotion &motion) const;
    Curve fitted(const RyGltfMotion &motion) const;
    Eigen::Vector3d place(const RyGltfMotionPiece &piece, double time) const;

    Eigen::Vector3d m_shift = Eigen::Vector3d::Zero();           // of the origin, in the node's old frame
    Eigen::Quaterniond m_turn = Eigen::Quaterniond::Identity();  // acts before the rotation
    Eigen::Matrix3d m_permutation = Eigen::Matrix3d::Identity(); // of the scale's factors
    Eigen::Quaterniond m_parentTurn = Eigen::Quaterniond::Identity();
    Eigen::Affine3d m_after = Eigen::Affine3d::Identity();
    double m_factorAfter = 1.0; // of lengths in the parent
    double m_factor = 1.0;      // of scales
    double m_tolerance = 0.0;
};
