#pragma once

#include "rycore/io/gltf/extras/RyGltfMorphSource.h"
#include "rycore/io/gltf/extras/RyNodeValues.h"
#include "rycore/math/RyAffine.h"
#include "rycore/scene/RyNode.h"

#include <QPointer>

#include <array>
#include <memory>
#include <vector>

class RyBone;
class RyShape;
struct RyMeshParts;

/// A skin of the file: one map brings its mesh space to figure space.
struct RyGltfSkinSource
{
    int skin = -1;
    RyAffine toFigure; // mesh space in file units to figure space in centimetres
    /// The rest had to be taken from the node pose; vertices were brought there once.
    bool rebound = false;
};

/// Where a part of a figure's mesh comes from, in step with RyMeshParts::parts.
struct RyGltfPartSource
{
    int node = -1;
    int mesh = -1;
    int primitive = -1;
    int skin = -1;
};

/// The general map of a binding as it was read.
struct RyGltfLoadedWeights
{
    QPointer<RyNode> bone;
    std::vector<int> vertices;
    std::vector<quint16> weights;
};

/// The linear part of a map, for row vectors.
using RyGltfLinear = std::array<std::array<double, 3>, 3>;

struct RyGltfFigureSource
{
    QPointer<RyNode> sceneNode; // a figure, or a prop
    RyNodeValues loaded;
    std::vector<RyGltfSkinSource> skins;
    std::vector<RyGltfPartSource> parts;
    quint64 positionsHash = 0;                    // of the mesh as it was read
    std::shared_ptr<const RyMeshParts> meshParts; // likewise
    int vertexCount = 0;
    double height = 0.0; // of the mesh as it was read, in centimetres and the figure's space; 0 without one
    /// In the order of the bindings. Shared, for it is large and never changes.
    using Weights = std::vector<RyGltfLoadedWeights>;
    std::shared_ptr<const Weights> weights = std::make_shared<Weights>();
    /// Of a rebound figure, by vertex: how it was turned and scaled when it was brought to the rest, behind `toFigure`.
    std::shared_ptr<const std::vector<RyGltfLinear>> toNodePose;
    QString mapsText;          // local, scale and bulge maps as the extras say them
    int firstRoot = -1;        // node of the first topmost bone
    QByteArray riggingState;   // of the figure itself, as that of nodes
    QString groupsText;        // face groups as they were read, in the text of the extras
    QString selectionText;     // likewise the selection map
    QPointer<RyNode> followed; // the figure that it follows
    std::vector<RyGltfMorphSource> morphs;
    QString morphsText;     // their values as they were read, in the text of the extras
    QString parametricText; // likewise the joints of a parametric figure
    QString keptParametric; // stored joints that do not fit the file, as they stand there

    /// Whether vertices are elsewhere than they were read.
    bool hasOtherVertices() const;
    /// Whether they can go into the file's own meshes: they are still as many, in the same parts.
    bool canWriteVertices() const;
    /// Whether morphs that a node of the file shows are in the scene, on whatever node.
    bool hasMorphsOf(int node) const;
    /// Morphs of a shape that the file does not have.
    std::vector<const RyMorph *> newMorphs(const RyShape &shape) const;
};

/// The own bones of a skeleton; none for what is no skeleton.
std::vector<RyBone *> ryOwnBones(const RyNode &figure);
/// The first of them, without looking for the others; null for none.
RyBone *ryFirstOwnBone(const RyNode &figure);

/// Of what has its vertices there, along Y; the largest extent of what is flat.
double ryMeshHeight(const std::vector<RyVec3> &positions);

/// Of the positions of a node's mesh, to tell whether they were edited.
quint64 ryPositionsHash(const RyNode &node);
