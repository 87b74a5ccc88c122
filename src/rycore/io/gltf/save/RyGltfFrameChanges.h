#pragma once

#include "rycore/io/gltf/clips/RyGltfClips.h"
#include "rycore/io/gltf/save/RyGltfReach.h"
#include "rycore/io/gltf/save/RyGltfScenePatch.h"

/// Finds how far the rest of each bone differs from what was read, and from it the change of its node's own frame:
/// bind matrices, node transforms and clips all follow from that. The tree must be in line with the scene.
class RyGltfFrameChanges
{
public:
    /// `clips`: of the document as it was read.
    RyGltfFrameChanges(RyGltfScenePatch &patch, const RyGltfClips &clips);

    /// Fills `bind`, `restChanged`, `poseChanged` of the edits and `frames`.
    void apply();

private:
    using Edit = RyGltfScenePatch::Edit;

    /// Of a bone, before its rest was carried on.
    struct Rest
    {
        double origin[3];
        RyQuat orientation;
        bool isMoved, isTurned; // against what was read
    };
    Rest restOf(const Edit &edit);
    void compareRest(int index, Edit &edit);
    static RyAffine frameOf(const Rest &now, Edit &edit);
    void comparePose(Edit &edit) const;
    void spreadPoses();
    bool mustKeepRotation(int index, const Edit &edit, const RyQuat &orientation);
    static bool isStretched(const Edit &edit, double slack);
    double scaleSpread(int node, const Eigen::Matrix3d &turn) const;
    /// The uniform scale of the rest frame of a node that is new in the file, in centimetres: that of the bone above
    /// it, else of its first bone below, so that the scale of a character's root comes to nothing between its bones.
    double scaleOfNew(const RyNode &node) const;
    bool isKnownBone(const RyNode &node) const;

    RyGltfScenePatch &m_patch;
    const RyGltfClips &m_clips;
    RyGltfReach m_reach;
    std::vector<bool> m_isDriven;  // by node of the file, by any clip
    std::vector<bool> m_isRelated; // likewise, or above or below such
    QStringList m_keepRotation;    // names of bones
};

/// What is no bone stands where the scene has it in the world, although the file scales its parent with the figure.
bool ryGltfIsApart(const RyNode &node);
