#pragma once

#include "rycore/io/gltf/save/RyGltfClipWriter.h"
#include "rycore/io/gltf/save/RyGltfScenePatch.h"

/// Says what clips say of nodes anew, for a patched document: every vertex of every frame stays where it was. Numbers
/// come from the file as it was read, never from an earlier edit.
class RyGltfClipRewriter
{
public:
    /// `clips`: of the document as it was read.
    RyGltfClipRewriter(RyGltfScenePatch &patch, const RyGltfClips &clips) : m_patch(patch), m_clips(clips) {}

    /// Curves to be written. Nodes that are given as matrices and have to be driven become translation, rotation and
    /// scale.
    std::vector<RyGltfClipChange> rewrite() const;

private:
    RyGltfScenePatch &m_patch;
    const RyGltfClips &m_clips;
};
