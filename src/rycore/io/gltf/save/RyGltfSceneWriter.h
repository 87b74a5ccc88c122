#pragma once

#include "rycore/io/gltf/extras/RyGltfOrigin.h"

#include <QStringList>

struct RyGltfScenePatch;

/// Brings an edited scene back into the tree that it came from: only what was edited is rewritten, so that no rest
/// vertex moves and no posed vertex moves except as the edit means. Children keep their place unless the edit moved
/// them. What came from other files is brought into that of the first one.
class RyGltfSceneWriter
{
public:
    /// `origins`: the files of which something stands in the scene, at least one. `jointsOnly`: clips stay as they
    /// are.
    explicit RyGltfSceneWriter(std::vector<const RyGltfOrigin *> origins, bool jointsOnly = false)
        : m_origins(std::move(origins)), m_jointsOnly(jointsOnly)
    {}

    /// Whether anything differs from what was read.
    bool isEdited(const RyScene &scene) const;
    /// A patched copy of the first document, with what it does not know; that itself when nothing was edited; null with
    /// a reason when the scene cannot be written into it. `losses` gets what the format could hold and is not written.
    std::shared_ptr<const RyGltfDocument> patch(const RyScene &scene, QString *error, QStringList *messages,
                                                QStringList *losses) const;

private:
    std::unique_ptr<RyGltfOrigin> joined(QString *error, QStringList *losses) const;

    std::vector<const RyGltfOrigin *> m_origins;
    bool m_jointsOnly;
};
