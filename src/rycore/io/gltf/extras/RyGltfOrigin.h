#pragma once

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"

#include <QPointer>

#include <array>
#include <memory>
#include <vector>

class RyFigure;
struct RyMeshParts;

/// The numbers of a node as they were when it was read; what differs from them was edited.
struct RyNodeValues
{
    std::array<float, 9> rigging{};
    std::array<float, 9> riggingDefaults{};
    std::array<float, 10> pose{};
    int rotationOrder = 0;
    bool inheritScale = true;
    QString name;
    QString label;

    static RyNodeValues of(const RyNode &node);
    bool sameOrigin(const RyNodeValues &o) const;
    bool sameOrientation(const RyNodeValues &o) const;
    bool samePose(const RyNodeValues &o) const;
    bool operator==(const RyNodeValues &) const = default;
};

/// A node of the file that stands in the scene (a bone, a prop).
struct RyGltfNodeSource
{
    int node = -1;
    QPointer<RyNode> sceneNode;
    RyNodeValues loaded;
    /// Rest frame: node space to figure space in centimetres; its linear part is `stretch` times the rotation.
    RyAffine bind;
    /// What the rest frame holds besides rotation and translation (scale, shear); acts first and is untouched by edits.
    RyAffine stretch;
    /// The pose as the file says it: figure space to figure space, relative to the parent's.
    RyAffine localPose;
    bool isBone = false;
    int figure = -1;              // of a bone: its place in `figures`
    int parent = -1;              // node of the file that stands above it in the scene, -1 below a figure or nothing
    QPointer<RyNode> sceneParent; // the same in the scene, or the figure
    RyAffine ownMap;              // world map of the figure above a topmost bone
    QString riggingText;          // what the extras would hold, as it was read
};

/// A skin of the file: one map brings its mesh space to figure space.
struct RyGltfSkinSource
{
    int skin = -1;
    RyAffine toFigure;
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

struct RyGltfFigureSource
{
    QPointer<RyNode> sceneNode; // a figure, or a prop
    RyNodeValues loaded;
    std::vector<RyGltfSkinSource> skins;
    std::vector<RyGltfPartSource> parts;
    quint64 positionsHash = 0;                    // of the mesh as it was read
    std::shared_ptr<const RyMeshParts> meshParts; // likewise
    int vertexCount = 0;
    std::vector<RyGltfLoadedWeights> weights; // in the order of the bindings
    QString mapsText;                         // local, scale and bulge maps as the extras say them
    int firstRoot = -1;                       // node of the first topmost bone
    QString riggingText;                      // of the figure itself, as that of nodes
    QString groupsText;                       // face groups as they were read, in the text of the extras
    QString selectionText;                    // likewise the selection map

    /// Whether vertices are elsewhere than they were read.
    bool hasOtherVertices() const;
    /// Whether they can go into the file's own meshes: they are still as many, in the same parts.
    bool canWriteVertices() const;
};

/// Of the positions of a node's mesh, to tell whether they were edited.
quint64 ryPositionsHash(const RyNode &node);

/// The file behind a scene read from glTF: the kept tree, and which of its nodes stand in the scene.
class RyGltfOrigin : public RySceneOrigin
{
public:
    QString path() const override { return filePath; }
    double unitFactor() const override { return unit; }

    /// Notes how the scene's nodes hang together; at the end of reading.
    void recordTree();
    const RyGltfNodeSource *findSource(const RyNode *node) const;
    const RyGltfFigureSource *findFigureSource(const RyNode *figure) const;
    /// Whether a node is a figure with bones that the file has.
    bool isKeptFigure(const RyNode &node) const;

    QString filePath;
    double unit = 100.0;
    std::unique_ptr<RyGltfDocument> document;
    std::vector<RyGltfNodeSource> nodes; // pre-order of the file
    std::vector<RyGltfFigureSource> figures;
    std::vector<QPointer<RyNode>> tops; // what was read at the top of the scene
    /// Those with all below them, pre-order, each with its parent: to see whether the tree was edited.
    std::vector<std::pair<const RyNode *, const RyNode *>> order;
    bool unitWasChosen = false; // by the user, not by the file
};
