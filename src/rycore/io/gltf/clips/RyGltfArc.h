#pragma once

#include "rycore/io/gltf/clips/RyGltfMotion.h"

#include <cmath>

/// The way of a point that is fixed in a node's frame, between two times without a key: an arc, where the node turns at
/// one speed and its scale stands still, and what its translation adds to that, which is straight.
class RyGltfArc
{
public:
    /// None where the way is another one. `after`: a rotation times one factor, which acts on the place in the parent.
    static std::optional<RyGltfArc> find(const RyGltfMotionPiece &piece, const Eigen::Vector3d &point,
                                         const Eigen::Matrix3d &after);

    /// How far a piece of the way that takes so long is from the line between its ends, at most.
    double rise(double seconds) const
    {
        const double sine = std::sin(0.25 * m_speed * seconds);
        return 2.0 * m_radius * sine * sine;
    }

private:
    double m_speed = 0.0; // radians per second
    double m_radius = 0.0;
};
