#include "rycore/io/gltf/save/RyGltfChannelRemoval.h"

#include "rycore/io/gltf/document/RyGltfReferences.h"
#include "rycore/io/gltf/extras/RyExtrasJson.h"

#include <algorithm>

using RyExtrasJson::find;
using Json = RyExtrasJson::Json;

void RyGltfChannelRemoval::apply(const IsGone &isGone)
{
    Json &tree = m_patch.document.json();
    const auto clips = tree.find("animations");
    if (clips == tree.end() || !clips->is_array())
        return;
    size_t number = 0;
    for (auto clip = clips->begin(); clip != clips->end(); ++number) {
        if (!takeFrom(*clip, isGone)) {
            ++clip;
            continue;
        }
        const QString name = RyGltfScenePatch::clipName(m_patch.document.model(), number);
        // The format knows no clip without channels.
        const bool isEmpty = (*clip)["channels"].empty();
        (isEmpty ? m_left : m_shortened).append(name);
        clip = isEmpty ? clips->erase(clip) : clip + 1;
    }
    if (m_shortened.isEmpty() && m_left.isEmpty())
        return;
    if (clips->empty())
        tree.erase("animations");
    m_patch.document.refreshClips();
    m_patch.document.releaseUnused({m_accessors.begin(), m_accessors.end()});
}

bool RyGltfChannelRemoval::takeFrom(Json &clip, const IsGone &isGone)
{
    const auto channels = clip.is_object() ? clip.find("channels") : clip.end();
    if (!clip.is_object() || channels == clip.end() || !channels->is_array())
        return false;
    std::set<size_t> samplers; // of dropped channels
    bool any = false;
    for (auto channel = channels->begin(); channel != channels->end();) {
        const Json *target = find(*channel, "target");
        if (!target || !isGone(*target)) {
            ++channel;
            continue;
        }
        const Json *sampler = find(*channel, "sampler");
        if (sampler && RyGltfReferences::isIndex(*sampler))
            samplers.insert(sampler->get<size_t>());
        channel = channels->erase(channel);
        any = true;
    }
    dropSamplers(clip, samplers);
    return any;
}

/// Drops those of the candidates that no channel uses; the others are numbered anew.
void RyGltfChannelRemoval::dropSamplers(Json &clip, const std::set<size_t> &candidates)
{
    const auto samplers = clip.find("samplers");
    if (candidates.empty() || samplers == clip.end() || !samplers->is_array())
        return;
    std::set<size_t> dropped;
    for (const size_t candidate : candidates) {
        if (candidate < samplers->size())
            dropped.insert(candidate);
    }
    Json &channels = clip["channels"];
    for (const Json &channel : channels) {
        const Json *sampler = find(channel, "sampler");
        if (sampler && RyGltfReferences::isIndex(*sampler))
            dropped.erase(sampler->get<size_t>());
    }
    for (auto sampler = dropped.rbegin(); sampler != dropped.rend(); ++sampler) {
        for (const char *key : {"input", "output"}) {
            const Json *accessor = find((*samplers)[*sampler], key);
            if (accessor && RyGltfReferences::isIndex(*accessor) &&
                accessor->get<size_t>() < m_patch.document.model().accessors.size())
                m_accessors.insert(accessor->get<int>());
        }
        samplers->erase(*sampler);
    }
    for (Json &channel : channels) {
        const auto sampler = channel.find("sampler");
        if (sampler == channel.end() || !RyGltfReferences::isIndex(*sampler))
            continue;
        const auto before = sampler->get<size_t>();
        *sampler = before - size_t(std::distance(dropped.begin(), dropped.lower_bound(before)));
    }
}
