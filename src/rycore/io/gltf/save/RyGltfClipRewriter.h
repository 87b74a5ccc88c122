#pragma once

#include "rycore/io/gltf/clips/RyGltfMotionChange.h"
#include "rycore/io/gltf/save/RyGltfClipWriter.h"
#include "rycore/io/gltf/save/RyGltfDeletedBones.h"
#include "rycore/io/gltf/save/RyGltfNodeMotions.h"

/// Says what clips say of nodes anew, for a patched document: every vertex of every frame stays where it was. Numbers
/// come from the file as it was read, never from an earlier edit.
class RyGltfClipRewriter
{
public:
    /// `clips`: of the document as it was read.
    RyGltfClipRewriter(RyGltfScenePatch &patch, const RyGltfClips &clips);

    /// Curves to be written. Nodes that are given as matrices and have to be driven become translation, rotation and
    /// scale.
    std::vector<RyGltfClipChange> rewrite();

private:
    /// What clips play on of a node whose pose was edited: where they drive nothing of it, and where they drive a part,
    /// which leaves the edit to the other properties.
    struct Base
    {
        RyGltfParts whole, byProperty;
    };

    void rewriteClip(size_t clip);
    double rewriteNode(size_t clip, const RyGltfNodeMotion &motion, bool isRelated);
    RyGltfMotion motionOf(const RyGltfClip &clip, int node) const;
    RyGltfMotion restOf(int node) const;
    RyGltfMotionChange changeOf(const RyGltfClip &clip, const RyGltfNodeMotion &motion) const;
    void findBases();
    Base baseOf(int node, const RyGltfNodeMotion *motion) const;
    bool isReadable(const RyGltfClip &clip, int node, RyGltfPath path) const;
    bool canRewrite(const RyGltfClip &clip, const RyGltfNodeMotion &motion) const;
    std::vector<double> sizesIn(const RyGltfClip &clip) const;
    bool addKeys(size_t clip, const RyGltfNodeMotion &motion, const RyGltfMotion &result, double tolerance);
    float startOf(const RyGltfClip &clip) const;
    void measureDeleted(const RyGltfClip &clip);
    void report() const;
    static QString withShare(const QString &name, double heights);

    RyGltfScenePatch &m_patch;
    const RyGltfClips &m_clips;
    const RyGltfModel &m_before;
    std::vector<RyGltfNodeMotion> m_motions;
    std::map<int, Base> m_bases;  // of nodes whose pose was edited
    std::vector<int> m_orderNow;  // of the document
    std::vector<double> m_sizes;  // of nodes' spaces in the clip that is rewritten
    std::set<int> m_heldByMatrix; // nodes that should have got keys
    std::vector<RyGltfClipChange> m_changes;
    RyGltfDeletedBones m_deleted;
    QStringList m_unreadable, m_vanishing; // names of clips
    QStringList m_sheared, m_following;    // likewise, with how far vertices are off
};
