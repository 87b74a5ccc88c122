#pragma once

#include "rycore/io/gltf/clips/RyGltfParts.h"
#include "rycore/io/gltf/save/RyGltfReach.h"
#include "rycore/io/gltf/save/RyGltfScenePatch.h"

/// How the motion of a node follows from that of a node of the file. For column vectors:
///
///     new = after * inverse(up) * between * down * old * before
struct RyGltfNodeMotion
{
    int node = -1;   ///< of the patched document
    int source = -1; ///< of the file: the same one, or the joint whose weights a new one took over
    Eigen::Affine3d before = Eigen::Affine3d::Identity();
    std::vector<int> down; ///< of the file: from the old parent to where the new one hangs as well, the nearest first
    Eigen::Affine3d between = Eigen::Affine3d::Identity();
    std::vector<int> up; ///< likewise from the new parent
    Eigen::Affine3d after = Eigen::Affine3d::Identity();
    double height = 0.0;    ///< of the figure, in units of the world of the file
    double tolerance = 0.0; ///< likewise
    double reach = 0.0;     ///< in units of the node
    double slack = 1e-7;    ///< shear that nobody sees, of the size

    /// Whether the new origin runs on another path than the old one.
    bool isOffPath() const { return !before.translation().isZero(0.0) || !down.empty() || !up.empty(); }
};

/// Finds the nodes of a patched document that clips have to move otherwise than they did, so that every vertex stays
/// where it was at all times. Transforms of nodes must have been written.
class RyGltfNodeMotions
{
public:
    explicit RyGltfNodeMotions(const RyGltfScenePatch &patch);

    std::vector<RyGltfNodeMotion> find();

private:
    void add(RyGltfNodeMotion motion);
    void addKnown(int node);
    void addNew(int node, const RyNode &sceneNode);
    void hangElsewhere(RyGltfNodeMotion &motion, int oldParent, int newParent) const;
    int giverOf(const RyNode &bone) const;
    bool isNew(int node) const;
    bool isThere(int node) const;
    Eigen::Affine3d localNow(int node) const;
    void setLimits(std::vector<RyGltfNodeMotion> &motions);

    const RyGltfScenePatch &m_patch;
    const RyGltfModel &m_before;
    const RyGltfModel &m_now;
    std::map<int, Eigen::Affine3d> m_frames; // see RyGltfScenePatch::frames, for column vectors
    std::map<int, int> m_givers;             // of new nodes: joints of the file whose motion they take
    std::vector<RyGltfNodeMotion> m_motions;
    RyGltfReach m_reach;
};
