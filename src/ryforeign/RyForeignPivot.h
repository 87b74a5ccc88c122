#pragma once

#include "rycore/math/RyAffine.h"

#include <array>

/// How a node of an FBX file takes on the scale of the nodes above it: as a node of glTF does, along the axes of the
/// node itself instead of those above, or not that of its parent.
enum class RyForeignScaling { Usual, Apart, NotOfParent };

/// Points of its own about which a node of an FBX file turns and is scaled, and where it holds its meshes. The
/// importers' library drops clips of nodes that have such points, and the places of the meshes, so that it gets the
/// file without.
struct RyForeignPivot
{
    using Vector = std::array<double, 3>;

    Vector rotationOffset{}, rotationPivot{}, scalingOffset{}, scalingPivot{};
    Vector scaling{1.0, 1.0, 1.0}; // of the node itself
    RyAffine geometric;            // from the space of the meshes to that of the node

    bool hasPoints() const;
    /// What moves a node besides its translation when it is turned and scaled so. Of a mirrored node the library calls
    /// other axes mirrored; they are taken to be those of the node itself.
    Vector shift(const RyAffine &rotation, const Vector &scale) const;
    /// The node itself, which the library has without its points.
    RyAffine placed(const RyAffine &local) const;
};
