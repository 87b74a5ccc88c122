#pragma once

#include "rycore/io/gltf/clips/RyGltfClips.h"
#include "rycore/io/gltf/extras/RyGltfOrigin.h"
#include "rycore/io/gltf/play/RyGltfDrivenMorph.h"
#include "rycore/scene/clips/RyClip.h"

/// A clip of a glTF file that plays in the scene that the file became.
class RyGltfPlayedClip : public RyClip
{
public:
    RyGltfPlayedClip(const std::shared_ptr<const RyGltfOrigin> &origin, std::shared_ptr<const RyGltfClips> clips,
                     size_t index);

    QString name() const override { return clip().name; }
    double start() const override { return span().first; }
    double end() const override { return span().second; }
    std::vector<RyNode *> subjects(const RyScene &scene) const override;
    std::unique_ptr<RyClipMotion> prepare(const RyScene &scene) const override;

    /// All clips of a file that drive something by channels that can be followed.
    static RySceneOrigin::Clips allOf(const std::shared_ptr<const RyGltfOrigin> &origin);

private:
    const RyGltfClip &clip() const { return m_clips->clips()[m_index]; }
    std::pair<double, double> span() const;
    void findMoved(const RyGltfOrigin &origin);

    std::weak_ptr<const RyGltfOrigin> m_origin; // which holds the clip
    std::shared_ptr<const RyGltfDocument> m_document;
    std::shared_ptr<const RyGltfClips> m_clips; // of the document
    size_t m_index;
    std::vector<int> m_moved; // places in the origin's nodes
    std::vector<RyGltfDrivenMorph> m_morphs;
    mutable std::optional<std::pair<double, double>> m_span;
};
