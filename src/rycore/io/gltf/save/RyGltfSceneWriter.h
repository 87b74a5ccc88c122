#pragma once

#include "rycore/io/gltf/extras/RyGltfOrigin.h"

#include <QStringList>

struct RyGltfScenePatch;

/// Brings an edited scene back into the tree that it came from: only what was edited is rewritten, so that no rest
/// vertex moves and no posed vertex moves except as the edit means. Children keep their place unless the edit moved
/// them.
class RyGltfSceneWriter
{
public:
    explicit RyGltfSceneWriter(const RyGltfOrigin &source) : m_source(source) {}

    /// Whether anything differs from what was read.
    bool isEdited(const RyScene &scene) const;
    /// A patched copy of the document, with the nodes that it does not know. Untouched when nothing was edited; null
    /// with a reason when the scene cannot be written into it.
    std::unique_ptr<RyGltfDocument> patch(const RyScene &scene, QString *error, QStringList *messages) const;

private:
    bool isFigureEdited(const RyGltfFigureSource &figure) const;
    std::vector<const RyNode *> newTops(const RyScene &scene) const;
    /// Stores what glTF has no place for.
    void storeExtras(RyGltfScenePatch &patch, const std::vector<const RyNode *> &newFigures) const;
    /// Says what the file cannot take of changed vertices.
    void reportMeshes(QStringList *messages) const;
    void reportNewMeshes(const RyGltfScenePatch &patch) const;

    const RyGltfOrigin &m_source;
};
