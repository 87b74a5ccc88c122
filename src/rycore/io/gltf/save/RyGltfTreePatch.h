#pragma once

#include <nlohmann/json_fwd.hpp>

#include <QString>

#include <vector>

class RyGltfDocument;

/// Changes of a document's tree that its model knows of only after `finish`. Nodes, meshes and skins keep their
/// indices.
class RyGltfTreePatch
{
public:
    explicit RyGltfTreePatch(RyGltfDocument &document) : m_document(document) {}

    /// A node of ours that hangs nowhere yet, at the end of the list.
    int addNode(const QString &name);
    /// The same in the place of one of ours that is gone, where there is one.
    int addNodeInPlace(const QString &name);
    int nodeCount() const;
    void setChildren(int node, const std::vector<int> &children);
    /// Roots of a scene of the file.
    void setSceneRoots(int scene, const std::vector<int> &roots);
    std::vector<int> sceneRoots(int scene) const;
    int sceneCount() const;
    /// As many as the skin's inverse bind matrices at the time of `finish`. A "skeleton" that `stillAbove` denies is
    /// left out.
    void setSkinJoints(int skin, const std::vector<int> &joints, bool stillAbove);
    /// A copy of a mesh with everything that belongs to it; accessors are shared.
    int cloneMesh(int mesh);
    /// A mesh of copies of primitives (mesh, primitive) without their influences; accessors and materials are shared.
    int addMeshOf(const QString &name, const std::vector<std::pair<int, int>> &primitives);
    /// Takes a node's mesh and skin away, or gives it others; -1 for none.
    void setNodeMesh(int node, int mesh, int skin);
    /// Whether the node holds something by itself: a mesh, a camera, an extension.
    bool hasContent(int node) const;
    /// Whether there is anything that the model does not know of.
    bool isChanged() const { return m_isChanged; }
    /// False with a reason when the tree is no valid one now.
    bool finish(QString *error);

private:
    nlohmann::ordered_json &changingTree();
    void setNode(int node, const QString &name);

    RyGltfDocument &m_document;
    bool m_isChanged = false;
};
