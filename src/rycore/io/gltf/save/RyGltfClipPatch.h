#pragma once

#include "rycore/io/gltf/save/RyGltfScenePatch.h"

#include <nlohmann/json_fwd.hpp>

/// Takes the channels of removed joints and props out of the clips, with the samplers that only they used. Nodes that
/// stay in their places for what they hold keep their channels. Accessors stay. The tree must be in line with the
/// scene.
class RyGltfClipPatch
{
public:
    explicit RyGltfClipPatch(RyGltfScenePatch &patch) : m_patch(patch) {}

    /// False with a reason when the document would not be valid.
    bool apply(QString *error);

private:
    void findGone();
    bool isGone(const nlohmann::ordered_json &target) const;
    bool dropChannels(nlohmann::ordered_json &clip) const;
    static void dropSamplers(nlohmann::ordered_json &clip, const std::set<size_t> &candidates);

    RyGltfScenePatch &m_patch;
    std::set<int> m_gone; // nodes that hang nowhere any more
};
