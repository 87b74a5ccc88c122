#pragma once

#include "rycore/io/gltf/clips/RyGltfKeyTimes.h"
#include "rycore/io/gltf/clips/RyGltfMotionChange.h"

/// A change that curves cannot follow key by key: the whole local transform is taken at so many times that nobody sees
/// the difference between them.
class RyGltfSampledChange
{
public:
    /// Both must outlive it.
    RyGltfSampledChange(const RyGltfMotion &motion, const RyGltfMotionChange &change)
        : m_motion(motion), m_change(change)
    {}

    /// What acts after the node's own transform, at a time between two that have no key between them.
    Eigen::Affine3d behind(float from, float to, double time) const;
    /// See `ryGltfChanged`.
    RyGltfMotion apply(double *missed) const;

private:
    class Piece;

    const RyGltfMotion &m_motion;
    const RyGltfMotionChange &m_change;
};
