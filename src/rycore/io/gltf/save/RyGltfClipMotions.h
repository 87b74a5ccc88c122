#pragma once

#include "rycore/io/gltf/save/RyGltfNodeMotions.h"

#include <array>

/// How nodes move within their parents in the clips of a file, with what was edited of their poses. Once made, it is
/// read from several threads.
class RyGltfClipMotions
{
public:
    /// `clips`: of the document as it was read. All must outlive it.
    RyGltfClipMotions(const RyGltfScenePatch &patch, const RyGltfClips &clips,
                      const std::vector<RyGltfNodeMotion> &motions);

    /// As it plays in a clip.
    RyGltfMotion of(const RyGltfClip &clip, int node) const;
    /// Whether all that the clip says of a part of the node's transform can be followed.
    bool isReadable(const RyGltfClip &clip, int node, RyGltfPath path) const;
    bool isReadable(const RyGltfClip &clip, int node) const;
    /// The change of a motion, with the motions of other nodes that enter; without a tolerance.
    RyGltfMotionChange changeOf(const RyGltfClip &clip, const RyGltfNodeMotion &motion) const;
    /// How large the space of each node of the patched document is at most while the clip plays.
    std::vector<double> sizesIn(const RyGltfClip &clip) const;
    /// Nodes of the patched document, parents first.
    const std::vector<int> &order() const { return m_order; }

private:
    /// What clips play on of a node whose pose was edited: where they drive nothing of it, and where they drive a part,
    /// which leaves the edit to the other properties.
    struct Base
    {
        RyGltfParts whole, byProperty;
    };

    void findBases(const std::vector<RyGltfNodeMotion> &motions);
    Base baseOf(int node, const RyGltfNodeMotion *motion) const;
    RyGltfMotion restOf(int node) const;

    const RyGltfScenePatch &m_patch;
    const RyGltfClips &m_clips;
    const RyGltfModel &m_before;
    std::map<int, Base> m_bases;     // of nodes whose pose was edited
    std::vector<int> m_order;        // of the patched document
    std::vector<double> m_restSizes; // of nodes' own transforms
};
