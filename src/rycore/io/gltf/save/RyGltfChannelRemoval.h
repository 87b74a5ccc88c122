#pragma once

#include "rycore/io/gltf/save/RyGltfScenePatch.h"

#include <nlohmann/json_fwd.hpp>

#include <functional>

/// Takes channels out of the clips of a document, with the samplers and accessors that only they used, and clips that
/// have no channel left.
class RyGltfChannelRemoval
{
public:
    explicit RyGltfChannelRemoval(RyGltfScenePatch &patch) : m_patch(patch) {}

    /// By what a channel drives.
    using IsGone = std::function<bool(const nlohmann::ordered_json &target)>;
    void apply(const IsGone &isGone);

    /// Names of clips that have lost channels, and of those that have lost all.
    const QStringList &shortened() const { return m_shortened; }
    const QStringList &left() const { return m_left; }

private:
    bool takeFrom(nlohmann::ordered_json &clip, const IsGone &isGone);
    void dropSamplers(nlohmann::ordered_json &clip, const std::set<size_t> &candidates);

    RyGltfScenePatch &m_patch;
    QStringList m_shortened, m_left;
    std::set<int> m_accessors; // that dropped samplers read
};
