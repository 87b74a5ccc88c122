#pragma once

#include "rycore/io/gltf/RyGltfDocument.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"

#include <QPointer>

#include <array>
#include <memory>
#include <vector>

class RyFigure;

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
    QString riggingText; // what the extras would hold, as it was read
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

struct RyGltfFigureSource
{
    QPointer<RyNode> sceneNode; // a figure, or a prop
    RyNodeValues loaded;
    std::vector<RyGltfSkinSource> skins;
    std::vector<RyGltfPartSource> parts;
    quint64 positionsHash = 0; // of the mesh and of the skin as they were read
    quint64 weightsHash = 0;
    QString groupsText; // face groups as they were read, in the text of the extras
    QString selectionText; // likewise the selection map
};

/// Of the positions of a node's mesh, and of its weights and the bones they belong to; to tell whether they were edited.
quint64 ryPositionsHash(const RyNode &node);
quint64 ryWeightsHash(const RyNode &node);

/// The file behind a scene read from glTF: the kept tree, and which of its nodes stand in the scene.
class RyGltfSceneDocument : public RySceneDocument
{
public:
    QString path() const override { return filePath; }
    double unitFactor() const override { return unit; }

    const RyGltfNodeSource *findSource(const RyNode *node) const;
    const RyGltfFigureSource *findFigureSource(const RyNode *figure) const;

    QString filePath;
    double unit = 100.0;
    std::unique_ptr<RyGltfDocument> document;
    std::vector<RyGltfNodeSource> nodes; // pre-order of the file
    std::vector<RyGltfFigureSource> figures;
    bool unitWasChosen = false; // by the user, not by the file
};
