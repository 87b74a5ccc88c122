#pragma once

#include "rycore/io/gltf/clips/RyGltfMotionChange.h"
#include "rycore/io/gltf/save/RyGltfReach.h"
#include "rycore/io/gltf/save/RyGltfScenePatch.h"

/// How the motion of a node follows from that of a node of the file.
struct RyGltfNodeMotion
{
    int node = -1;   ///< of the patched document
    int source = -1; ///< of the file: the same one, or the joint whose weights a new one took over
    /// Nodes of the file whose motions `change.down` and `change.up` are.
    std::vector<int> down, up;
    double height = 0.0; ///< of the figure, in units of the world of the file
    double limit = 0.0;  ///< how far what follows may be off by all curves along a limb, in the same units
    int depth = 1;       ///< curves along the longest limb through it that may be off between their keys in some clip
    /// Without the motions of other nodes and a tolerance.
    RyGltfMotionChange change;

    /// Whether the new origin runs on another path than the old one.
    bool isOffPath() const { return !change.before.translation().isZero(0.0) || !down.empty() || !up.empty(); }
};

/// Finds the nodes of a patched document that clips have to move otherwise than they did, so that every vertex stays
/// where it was at all times. Transforms of nodes must have been written.
class RyGltfNodeMotions
{
public:
    explicit RyGltfNodeMotions(const RyGltfScenePatch &patch);

    std::vector<RyGltfNodeMotion> find();

private:
    void addKnown(int node);
    void hangElsewhere(RyGltfNodeMotion &motion, int oldParent, int newParent) const;
    bool isNew(int node) const;
    bool isThere(int node) const;
    Eigen::Affine3d localNow(int node) const;
    double heightOf(const RyNode &figure);
    void setLimits(std::vector<RyGltfNodeMotion> &motions);

    const RyGltfScenePatch &m_patch;
    const RyGltfModel &m_before;
    const RyGltfModel &m_now;
    std::map<int, Eigen::Affine3d> m_frames; // see RyGltfScenePatch::frames, for column vectors
    std::map<int, int> m_givers;             // of new nodes: joints of the file whose motion they take
    std::vector<RyGltfNodeMotion> m_motions;
    RyGltfReach m_reach;
};
