#pragma once

#include "rycore/io/gltf/save/RyGltfScenePatch.h"

/// Writes names and transforms of nodes: only what was edited, such that no rest vertex moves and no posed vertex moves
/// except as the edit means. Children keep their place unless the edit moved them. The tree must be in line with the
/// scene.
class RyGltfNodePatch
{
public:
    explicit RyGltfNodePatch(RyGltfScenePatch &patch) : m_patch(patch) {}

    void apply();
    /// Names the clips that drive a rewritten node.
    void reportClips() const;

private:
    using Edit = RyGltfScenePatch::Edit;

    void compare();
    static bool isApart(const RyNode &node);
    static RyAffine shownMap(const RyNode &node);
    /// The uniform scale of the rest frame of a node that is new in the file, in centimetres: that of the bone above
    /// it, else of its first bone below, so that the scale of a character's root comes to nothing between its bones.
    double scaleOfNew(const RyNode &node) const;
    bool isKnownBone(const RyNode &node) const;
    RyAffine localPoseNow(const Edit &edit) const;
    void writeNode(int index, const Edit &edit);
    void writeUnlistedChildren(int index, const Edit &edit);
    void setLocal(int node, const RyAffine &local);
    void keepSingular(const RyNode &node) const;

    RyGltfScenePatch &m_patch;
    std::vector<bool> m_isAnimated;
};

/// A node transform that holds a map: translation, rotation and scale where they can say it (`exact` tells), otherwise
/// the nearest, or the matrix itself with `asMatrix`.
RyGltfTransform ryGltfTransformOf(const RyAffine &local, bool asMatrix, bool *exact = nullptr);
