#pragma once

#include "rycore/io/gltf/open/RyGltfJointSet.h"

#include <QStringList>

#include <functional>
#include <vector>

class RyGltfDocument;

/// The rest of one set of joints, in file units: where bones stand when the vertices are where the file has them.
struct RyGltfRest
{
    std::vector<RyAffine> bind;      ///< per bone: joint space to figure space
    std::vector<RyAffine> localPose; ///< per bone: the file's pose, relative to the parent's, in figure space
    std::vector<RyAffine> toFigure;  ///< per skin of the set: mesh space to figure space
    /// Per skin: inverse bind matrices, one for each joint: mesh space to joint space.
    std::vector<std::vector<RyAffine>> inverseBinds;
    /// The bind matrices say nothing usable: rest is the node pose, and vertices must be brought there by the file's
    /// own skinning (`toFigure` is then the identity).
    bool rebound = false;
    bool isStored = false; ///< all of `toFigure` was stored by an earlier save
    QString reason;
};

/// Frame of a node at rest, of which the file says only where it is: from that frame.
using RyGltfRestOf = std::function<RyAffine(int node, const RyAffine &posed)>;

/// `nodeToWorld`: per node of the file, in file units. `restOf` may be empty. Maps of mesh spaces to figure space that
/// an earlier save stored are taken as they are.
RyGltfRest ryGltfFindRest(const RyGltfDocument &document, const RyGltfJointSet &set,
                          const std::vector<RyAffine> &nodeToWorld, const RyGltfRestOf &restOf = {});
