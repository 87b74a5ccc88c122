#pragma once

#include "rycore/io/gltf/clips/RyGltfMotion.h"

/// The way of a point that is fixed in a node's frame, between two times without a key: an arc, where the node turns at
/// one speed and its scale changes in a straight line or not at all, and what its translation adds to that, which is
/// straight.
class RyGltfArc
{
public:
    /// None where the way is another one. The translation must stand still, step or be straight. `factor`: how much
    /// larger its place in the parent is taken.
    static std::optional<RyGltfArc> find(const RyGltfMotionPiece &piece, const Eigen::Vector3d &point, double factor);

    /// How far a piece of the way that takes so long is from the line between its ends, at most.
    double rise(double seconds) const { return 0.125 * m_bend * seconds * seconds; }

private:
    double m_bend = 0.0; // the most that its velocity changes per second
};
