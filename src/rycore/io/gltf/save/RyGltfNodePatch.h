#pragma once

#include "rycore/io/gltf/save/RyGltfScenePatch.h"

/// Writes names and transforms of nodes: only what was edited, such that no rest vertex moves and no posed vertex moves
/// except as the edit means. Children keep their place unless the edit moved them. The tree must be in line with the
/// scene, and the changes of frames known.
class RyGltfNodePatch
{
public:
    explicit RyGltfNodePatch(RyGltfScenePatch &patch) : m_patch(patch) {}

    void apply();

private:
    using Edit = RyGltfScenePatch::Edit;

    static RyAffine shownMap(const RyNode &node);
    static RyAffine aboutOrigin(RyAffine pose, const RyNodeValues &loaded, const RyNode &node);
    RyAffine localPoseNow(const Edit &edit) const;
    void writeNode(int index, const Edit &edit);
    void writeUnlistedChildren(int index, const Edit &edit);
    void setLocal(int node, const RyAffine &local);
    void keepSingular(const RyNode &node) const;

    RyGltfScenePatch &m_patch;
    std::vector<bool> m_isAnimated;
};
