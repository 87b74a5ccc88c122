#pragma once

#include "rycore/io/gltf/clips/RyGltfClips.h"
#include "rycore/io/gltf/save/RyGltfScenePatch.h"

/// Brings the clips in line with a patched tree: re-expresses them where rests or parents changed, and takes the
/// channels of removed joints and props out of the clips. Nodes that stay in their places for what they hold keep their
/// channels. The tree must be in line with the scene.
class RyGltfClipPatch
{
public:
    /// `clips`: of the document as it was read; none to leave them as they are.
    RyGltfClipPatch(RyGltfScenePatch &patch, const RyGltfClips &clips) : m_patch(patch), m_clips(clips) {}

    /// False with a reason when the clips do not fit into the file.
    bool apply(QString *error);

private:
    bool reexpress(QString *error) const;
    void reportKept() const;
    void drop();
    void findGone();
    bool isGone(const nlohmann::ordered_json &target) const;

    RyGltfScenePatch &m_patch;
    const RyGltfClips &m_clips;
    std::set<int> m_gone; // nodes that hang nowhere any more
};
