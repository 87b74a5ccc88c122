#pragma once

#include "rycore/io/gltf/RyGltfSceneDocument.h"

#include <QStringList>

#include <map>

class RyGltfSceneExporter;

/// Brings an edited scene back into the tree that it came from: only what was edited is rewritten, so that no rest vertex
/// moves and no posed vertex moves except as the edit means. Children keep their place unless the edit moved them.
class RyGltfSceneWriter
{
public:
    explicit RyGltfSceneWriter(const RyGltfSceneDocument &source) : m_source(source) {}

    /// Whether anything differs from what was read.
    bool isEdited(const RyScene &scene) const;
    /// A patched copy of the document. Untouched when nothing was edited.
    std::unique_ptr<RyGltfDocument> patch(const RyScene &scene, QStringList *messages);
    /// Stores what glTF has no place for, that of nodes which an exporter added to the patched document too.
    void storeExtras(RyGltfDocument &document, const RyGltfSceneExporter *added = nullptr);

private:
    struct Edit
    {
        const RyGltfNodeSource *source = nullptr;
        RyNodeValues now;
        RyAffine bind;      // rest frame now
        bool restChanged = false;
        bool poseChanged = false;
    };

    /// Nodes below a figure or prop of the file that the file does not hold, parents first.
    std::vector<const RyNode *> newNodes() const;
    void collectEdits();
    RyAffine localPoseNow(const Edit &edit) const;
    void writeNodes();
    void writeNode(const Edit &edit);
    void keepSingular(const RyNode &node);
    void addNewNodes();
    void addJoints(int skin, const std::vector<const RyNode *> &bones, const std::map<const RyNode *, RyAffine> &binds);
    void writeUnlistedChildren(const Edit &edit);
    void setLocal(int node, const RyAffine &local);
    void writeInverseBinds(const RyGltfFigureSource &figure);
    void writeRebound(const RyGltfFigureSource &figure);
    /// Of each joint the one by which its skin finds its place when the file is read.
    std::map<const RyNode *, const RyNode *> findAnchors() const;
    /// Vertices and weights are not written back into a file that has them; a message says when that loses something.
    void reportMeshes();
    void reportClips();

    const RyGltfSceneDocument &m_source;
    std::unique_ptr<RyGltfDocument> m_document;
    std::map<int, Edit> m_edits; // by node of the file
    std::map<const RyNode *, int> m_indexOf; // scene node to node of the patched document
    std::vector<std::pair<const RyNode *, int>> m_added;
    std::vector<bool> m_isAnimated;
    std::vector<int> m_rewritten;
    QStringList *m_messages = nullptr;
};

/// A node transform that holds a map: translation, rotation and scale where they can say it (`exact` tells), otherwise the
/// nearest, or the matrix itself with `asMatrix`.
RyGltfTransform ryGltfTransformOf(const RyAffine &local, bool asMatrix, bool *exact = nullptr);

/// Appends a map as the sixteen numbers of a matrix accessor.
void ryGltfAppendMatrix(const RyAffine &map, std::vector<float> &values);
