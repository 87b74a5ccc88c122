#include "rycore/io/gltf/save/RyGltfClipPatch.h"

#include "rycore/io/gltf/document/RyGltfReferences.h"
#include "rycore/io/gltf/extras/RyExtrasJson.h"
#include "rycore/io/gltf/extras/RyTreeExtras.h"
#include "rycore/io/gltf/save/RyGltfClipRewriter.h"

#include <algorithm>

using RyExtrasJson::find;
using Json = RyExtrasJson::Json;

bool RyGltfClipPatch::apply(QString *error)
{
    if (!reexpress(error))
        return false;
    drop();
    return true;
}

bool RyGltfClipPatch::reexpress(QString *error) const
{
    if (m_clips.clips().empty()) {
        reportKept();
        return true;
    }
    const std::vector<RyGltfClipChange> changes = RyGltfClipRewriter(m_patch, m_clips).rewrite();
    return RyGltfClipWriter(m_patch.document, m_clips).write(changes, error);
}

/// Names the clips that were left as they are although they drive joints of another rest, or below such.
void RyGltfClipPatch::reportKept() const
{
    const RyGltfModel &model = m_patch.source.document->model();
    QStringList names;
    for (size_t clip = 0; clip < model.animatedNodes.size(); ++clip) {
        const auto isOther = [&](int node) {
            const auto edit = m_patch.edits.find(node);
            return m_patch.frames.count(node) || m_patch.frames.count(model.nodes[size_t(node)].parent) ||
                   (edit != m_patch.edits.end() && edit->second.moved);
        };
        if (std::any_of(model.animatedNodes[clip].begin(), model.animatedNodes[clip].end(), isOther))
            names.append(RyGltfScenePatch::clipName(model, clip));
    }
    m_patch.sayOf(QStringLiteral("Clips were written as they were and say the old rest of edited joints: %1"), names);
}

void RyGltfClipPatch::drop()
{
    findGone();
    findWithoutMesh();
    Json &tree = m_patch.document.json();
    const auto clips = tree.find("animations");
    if ((m_gone.empty() && m_withoutMesh.empty()) || clips == tree.end() || !clips->is_array())
        return;
    QStringList shortened, left;
    const RyGltfModel &before = m_patch.source.document->model();
    size_t number = 0;
    for (auto clip = clips->begin(); clip != clips->end(); ++number) {
        if (!dropChannels(*clip)) {
            ++clip;
            continue;
        }
        const QString name = RyGltfScenePatch::clipName(before, number);
        // The format knows no clip without channels.
        const bool isEmpty = (*clip)["channels"].empty();
        (isEmpty ? left : shortened).append(name);
        clip = isEmpty ? clips->erase(clip) : clip + 1;
    }
    if (shortened.isEmpty() && left.isEmpty())
        return;
    if (clips->empty())
        tree.erase("animations");
    if (!m_gone.empty())
        m_patch.sayOf(QStringLiteral("Channels of removed joints were taken out of the clips: %1"), shortened);
    m_patch.sayOf(QStringLiteral("Clips that drove nothing but removed joints are gone with them: %1"), left);
    m_patch.document.refreshClips();
    m_patch.document.releaseUnused({m_accessors.begin(), m_accessors.end()});
}

void RyGltfClipPatch::findGone()
{
    const RyGltfModel &model = m_patch.document.model();
    for (const int node : m_patch.removed) {
        int top = node;
        while (model.nodes[size_t(top)].parent >= 0)
            top = model.nodes[size_t(top)].parent;
        if (RyTreeExtras::isRemoved(m_patch.document, "nodes", top))
            m_gone.insert(node);
    }
}

/// A mesh that became part of a figure or prop of another kind stands on another node.
void RyGltfClipPatch::findWithoutMesh()
{
    const RyGltfModel &before = m_patch.source.document->model();
    QStringList names;
    for (size_t clip = 0; clip < m_clips.clips().size(); ++clip) {
        for (const RyGltfWeightsChannel &channel : m_clips.clips()[clip].weights) {
            const auto node = size_t(channel.node);
            if (before.nodes[node].mesh < 0 || m_patch.document.model().nodes[node].mesh >= 0 ||
                m_gone.count(channel.node))
                continue;
            m_withoutMesh.insert(channel.node);
            names.append(RyGltfScenePatch::clipName(before, clip));
        }
    }
    names.removeDuplicates();
    m_patch.sayOf(QStringLiteral("Morphs of meshes that stand on another node now are not driven any more by: %1"),
                  names);
}

bool RyGltfClipPatch::isGone(const Json &target) const
{
    if (const Json *node = find(target, "node")) {
        if (!RyGltfReferences::isIndex(*node))
            return false;
        const Json *path = find(target, "path");
        return m_gone.count(node->get<int>()) > 0 ||
               (path && *path == "weights" && m_withoutMesh.count(node->get<int>()) > 0);
    }
    const auto pointed = ryGltfPointedNode(target);
    return pointed && m_gone.count(pointed->first) > 0;
}

bool RyGltfClipPatch::dropChannels(Json &clip)
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
void RyGltfClipPatch::dropSamplers(Json &clip, const std::set<size_t> &candidates)
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
