#pragma once

#include "rycore/io/gltf/clips/RyGltfMotion.h"

/// What becomes of the place of a node within its parent, at all times. For column vectors, from the right:
///
///     new = after * inverse(up) * between * down * old * before
///
/// `before` is the change of the node's own frame, `down` leads from its old parent to where its new one hangs as well,
/// `up` from the new parent to there, the nearest node first.
struct RyGltfMotionChange
{
    Eigen::Affine3d before = Eigen::Affine3d::Identity();
    std::vector<RyGltfMotion> down;
    Eigen::Affine3d between = Eigen::Affine3d::Identity();
    std::vector<RyGltfMotion> up;
    Eigen::Affine3d after = Eigen::Affine3d::Identity();
    double tolerance = 0.0; ///< length that nobody sees, in units of the new parent
    double slack = 1e-7;    ///< shear that nobody sees, of the size
    double reach = 0.0;     ///< how far from the node what follows it reaches, in units of the node

    /// Whether all but the node itself stands still.
    bool isConstant() const;
};

/// The motion with the change. Curves that stay as they are are the same objects; what nothing drives is in `rest`.
/// `missed`: how far, in units of the new parent, what no translation, rotation and scale can say puts what follows the
/// node off its place, at most; infinite where the change leads out of all numbers, as `up` does when it has no size.
/// There the motion stays.
RyGltfMotion ryGltfChanged(const RyGltfMotion &motion, const RyGltfMotionChange &change, double *missed);
