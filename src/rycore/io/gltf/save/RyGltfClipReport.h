#pragma once

#include "rycore/io/gltf/save/RyGltfScenePatch.h"

class RyGltfRewrittenClip;

/// Gathers what clips said anew cannot hold, and tells it with the names of the clips.
class RyGltfClipReport
{
public:
    explicit RyGltfClipReport(const RyGltfScenePatch &patch) : m_patch(patch) {}

    void add(const QString &name, const RyGltfRewrittenClip &clip);
    void say() const;

private:
    const RyGltfScenePatch &m_patch;
    std::set<int> m_heldByMatrix;
    QStringList m_unreadable, m_vanishing;         // names of clips
    QStringList m_sheared, m_following, m_blended; // likewise, with how far vertices are off
};
