#pragma once

#include <QString>

#include <vector>

class RyGltfDocument;

/// Changes of a document's node tree and skins. The document's model knows of them after `finish`.
class RyGltfTreePatch
{
public:
    explicit RyGltfTreePatch(RyGltfDocument &document) : m_document(document) {}

    /// Hangs a node below another, as its last child; parent -1 makes it a root of the scene.
    void moveNode(int node, int parent);
    /// The node shows no mesh any more.
    void hideMesh(int node);
    /// As many as the skin's inverse bind matrices at the time of `finish`.
    void setSkinJoints(int skin, const std::vector<int> &joints);
    /// The numbers of the skins behind them change.
    void removeSkins(std::vector<int> skins);
    /// False with a reason when the tree is no valid one now.
    bool finish(QString *error);

private:
    RyGltfDocument &m_document;
};
