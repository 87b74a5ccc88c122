#pragma once

#include <QString>

#include <vector>

class RyGltfDocument;

/// Changes of a document's tree that its model knows of only after `finish`.
class RyGltfTreePatch
{
public:
    explicit RyGltfTreePatch(RyGltfDocument &document) : m_document(document) {}

    /// As many as the skin's inverse bind matrices at the time of `finish`.
    void setSkinJoints(int skin, const std::vector<int> &joints);
    /// False with a reason when the tree is no valid one now.
    bool finish(QString *error);

private:
    RyGltfDocument &m_document;
};
