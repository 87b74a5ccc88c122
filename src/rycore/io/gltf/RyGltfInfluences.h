#pragma once

#include "rycore/io/gltf/RyGltfDocument.h"

/// The influences on the vertices of one primitive, repaired: flat arrays with `perVertex` places for each vertex, an
/// unused place has weight 0 and joint 0. Joint numbers are places in the skin's list of joints.
struct RyGltfInfluences
{
    int perVertex = 0;
    std::vector<std::uint32_t> joints;
    std::vector<float> weights;

    std::size_t droppedJoints = 0;   // of weights on joints the skin does not have
    std::size_t droppedWeights = 0;  // negative or not finite
    std::size_t mergedJoints = 0;    // a joint twice on one vertex: the weights were added
    std::size_t unweightedVertices = 0;

    /// Reads all sets of the primitive. Weights are not normalised. Empty when the primitive has none.
    static RyGltfInfluences read(const RyGltfDocument &document, const RyGltfPrimitive &primitive, int jointCount);
    /// One line for each kind of repair, beginning with `where`.
    QStringList warnings(const QString &where) const;
};
