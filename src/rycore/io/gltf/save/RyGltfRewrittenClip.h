#pragma once

#include "rycore/io/gltf/save/RyGltfCarriedVertices.h"
#include "rycore/io/gltf/save/RyGltfClipMotions.h"
#include "rycore/io/gltf/save/RyGltfClipWriter.h"
#include "rycore/io/gltf/save/RyGltfDeletedBones.h"

/// One clip said anew. It changes nothing but itself, so that several can be made at a time.
class RyGltfRewrittenClip
{
public:
    /// All must outlive it.
    struct Source
    {
        const RyGltfScenePatch &patch;
        const RyGltfClips &clips;
        const std::vector<RyGltfNodeMotion> &nodes;
        const RyGltfClipMotions &motions;
        const RyGltfDeletedBones &deleted;
        const RyGltfCarriedVertices &carried;
    };
    /// `clip`: its place in the list.
    RyGltfRewrittenClip(const Source &source, size_t clip);

    std::vector<RyGltfClipChange> changes;
    bool isRead = true;         ///< false where it drives what moves otherwise in a way that cannot be followed
    double missed = 0.0;        ///< how far something is put off its place, in heights of the figure; infinite for none
    double following = 0.0;     ///< how far vertices that followed deleted bones move elsewhere, likewise
    double blended = 0.0;       ///< how far vertices between joints of another rest are blended elsewhere, likewise
    std::set<int> heldByMatrix; ///< nodes that should have got keys
    std::set<int> taken;        ///< nodes given as matrices that it drives

private:
    std::set<int> drivenFigures() const;
    bool isOff(const RyGltfNodeMotion &node) const;
    void findDepths();
    bool canRewrite(const RyGltfNodeMotion &node) const;
    double rewriteNode(const RyGltfNodeMotion &node, bool isRelated);
    RyGltfMotionChange changeOf(const RyGltfNodeMotion &node) const;
    bool addKeys(const RyGltfNodeMotion &node, const RyGltfMotion &result, double tolerance);
    float start() const;
    double measure(const RyGltfStrayVertices &vertices) const;

    const Source &m_source;
    size_t m_place;
    const RyGltfClip &m_clip;
    std::vector<double> m_sizes; // of nodes' spaces
    std::vector<int> m_depths;   // curves that are off between their keys, along the longest limb through each node
};
