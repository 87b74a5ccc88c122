#pragma once

#include "rycore/io/gltf/extras/RyNodeValues.h"
#include "rycore/math/RyAffine.h"
#include "rycore/scene/RyNode.h"

#include <QByteArray>
#include <QPointer>

/// Whether a node, or one above it in its figure, drops the scale above it. In the world that is the figure's own scale
/// as well, in the file it is not: there the vertices follow, which are scaled with their figure.
bool ryDropsScale(const RyNode &node);

/// A node of the file that stands in the scene (a bone, a prop).
struct RyGltfNodeSource
{
    int node = -1;
    QPointer<RyNode> sceneNode;
    RyNodeValues loaded;
    /// Rest frame: node space in file units to figure space in centimetres; its linear part is `stretch` times the
    /// rotation.
    RyAffine bind;
    /// What the rest frame holds besides rotation and translation (scale, shear); acts first and is untouched by edits.
    RyAffine stretch;
    /// The pose as the file says it: figure space to figure space in centimetres, relative to the parent's.
    RyAffine localPose;
    bool isBone = false;
    quint64 serial = 0;           // of a bone, which may be gone by now
    int figure = -1;              // of a bone: its place in `figures`
    int parent = -1;              // node of the file that stands above it in the scene, -1 below a figure or nothing
    QPointer<RyNode> sceneParent; // the same in the scene, or the figure
    RyAffine figureToWorld;       // of the figure above a topmost bone, in centimetres
    QByteArray riggingState;      // of what the extras would hold, as it was read
};
