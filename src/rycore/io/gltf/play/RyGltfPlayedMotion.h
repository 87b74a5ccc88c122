#pragma once

#include "rycore/io/gltf/extras/RyGltfOrigin.h"
#include "rycore/io/gltf/play/RyGltfChains.h"
#include "rycore/io/gltf/play/RyGltfDrivenMorph.h"
#include "rycore/scene/clips/RyClip.h"

/// Where nodes of a scene stand, and how far morphs show, while a clip of its file plays. A bone's map leads from
/// figure space to figure space and is `inverse(bind) * W(t)`, with the bind that was read; edits of the rest do not
/// enter.
class RyGltfPlayedMotion : public RyClipMotion
{
public:
    /// `moved`: places in the nodes of the origin, which is asked only here.
    RyGltfPlayedMotion(const RyGltfOrigin &origin, const RyGltfClips &clips, const RyGltfClip &clip,
                       const std::vector<int> &moved, const std::vector<RyGltfDrivenMorph> &morphs,
                       const RyScene &scene);

    void evaluate(double seconds, RyClipFrame &frame) override;

private:
    /// node space to where the chain leads, between two that stand still: `before * chain * behind`.
    struct Played
    {
        RyNode *node = nullptr;
        int chain = -1;
        RyAffine before, behind;
    };
    void addBone(const RyGltfOrigin &origin, const RyGltfNodeSource &source, RyNode &bone);
    void addOther(const RyGltfOrigin &origin, const RyGltfNodeSource &source);
    void add(const RyGltfNodeSource &source, RyNode &node, int above, const RyAffine &behind);
    void addTakers(const RyGltfOrigin &origin);

    RyGltfChains m_chains;
    std::vector<Played> m_played;
    std::vector<std::pair<QPointer<RyMorph>, RyGltfTrack>> m_morphs;
};
