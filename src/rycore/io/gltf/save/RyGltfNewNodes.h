#pragma once

#include "rycore/io/gltf/extras/RyGltfNodeIndex.h"
#include "rycore/io/gltf/extras/RyGltfOrigin.h"
#include "rycore/io/gltf/save/RyGltfNewLooks.h"
#include "rycore/io/gltf/save/RyGltfWeightsPatch.h"

#include <QStringList>

#include <set>
#include <vector>

class RyAffine;
class RyBone;
class RyNode;
class RyScene;
class RySkeleton;
struct RyGltfScenePatch;

/// Writes nodes that came from nowhere (or a whole scene, without the file it came from) as new nodes, skins and
/// meshes: figure space becomes mesh space, all influences are written, weights sum to exactly full weight.
class RyGltfNewNodes
{
public:
    /// Appends to `document`. `unit`: centimetres per file unit.
    /// Meshes that came from the file of `source`, which the document is a patched copy of, keep materials, texture
    /// coordinates and whatever else their primitives have.
    RyGltfNewNodes(RyGltfDocument &document, double unit, const RyGltfOrigin *source = nullptr)
        : m_document(document), m_looks(document), m_source(source), m_unit(unit)
    {}

    /// A top-level node with everything below it.
    void addTree(const RyNode &top);
    /// The meshes and skins of nodes that a patch added.
    void addMeshes(const RyGltfScenePatch &patch);
    /// Stores end points, orders, groups and the like in the file's extras; call once at the end.
    void storeExtras(QStringList *messages);

    /// Nodes of all bones.
    const std::set<int> &joints() const { return m_joints; }
    /// Meshes of the source that nodes of ours show.
    const std::vector<RyGltfMovedMesh> &movedMeshes() const { return m_moved; }
    /// Figures with their skins first, then props: the order in which they will be read.
    std::vector<const RyNode *> figures() const;

    /// The unit is that of the file that the scene came from first. What came from another format, or from nowhere, is
    /// written in metres, which is what other programs take a glTF unit for.
    static std::unique_ptr<RyGltfDocument> writeScene(const RyScene &scene, QStringList *messages = nullptr);

private:
    void addNode(const RyNode &node, int parent, const RyAffine &parentBind);
    void addMeshOf(const RyNode &node, int fileNode, const RyAffine &meshFrame);
    void addSkinnedMesh(const RyNode &skeleton);
    const RyGltfFigureSource *knownMesh(const RyNode &node) const;
    int addKnownMesh(const RyNode &node, const RyGltfFigureSource &known, const RyAffine &toFigure);
    void bindKnownMesh(const RyNode &skeleton, int mesh, const RyGltfNodeIndex &jointOf);

    RyGltfDocument &m_document;
    RyGltfNewLooks m_looks;
    const RyGltfOrigin *m_source;
    double m_unit;
    RyGltfNodeIndex m_nodeOf;
    std::vector<const RyNode *> m_figures;
    std::set<int> m_joints;
    std::vector<RyGltfMovedMesh> m_moved;
};
