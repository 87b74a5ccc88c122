#include "rycore/io/gltf/play/RyGltfChains.h"

int RyGltfChains::add(int node, int above)
{
    std::vector<int> missing;
    int next = -1;
    for (int at = node; at >= 0 && at != above; at = m_model.nodes[size_t(at)].parent) {
        const auto known = m_chainOf.find({at, above});
        if (known != m_chainOf.end()) {
            next = known->second;
            break;
        }
        missing.push_back(at);
    }
    for (; !missing.empty(); missing.pop_back()) {
        Chain chain;
        chain.local = m_model.nodes[size_t(missing.back())].transform.toAffine();
        chain.driven = drivenOf(missing.back());
        chain.next = next;
        chain.isMoving = chain.driven >= 0 || (next >= 0 && m_chains[size_t(next)].isMoving);
        chain.map = next >= 0 ? chain.local * m_chains[size_t(next)].map : chain.local;
        next = int(m_chains.size());
        m_chains.push_back(chain);
        m_chainOf[{missing.back(), above}] = next;
    }
    return next;
}

/// -1 for a node without channels that say something usable.
int RyGltfChains::drivenOf(int node)
{
    const auto [known, isNew] = m_drivenOf.try_emplace(node, -1);
    if (!isNew)
        return known->second;
    Driven driven;
    bool isDriven = false;
    for (const RyGltfPath path : ryGltfPaths) {
        const RyGltfChannel *channel = m_clip.find(node, path);
        const auto curve = channel ? m_clips.curve(channel->sampler, path) : nullptr;
        if (curve)
            driven.tracks[size_t(path)].emplace(curve);
        isDriven = isDriven || curve;
    }
    if (!isDriven)
        return -1;
    driven.rest = RyGltfParts::of(m_model.nodes[size_t(node)].transform);
    known->second = int(m_driven.size());
    m_driven.push_back(std::move(driven));
    return known->second;
}

void RyGltfChains::evaluate(double seconds)
{
    for (Driven &driven : m_driven) {
        RyGltfParts parts = driven.rest;
        if (auto &track = driven.tracks[size_t(RyGltfPath::Translation)])
            parts.translation = track->vector(seconds);
        if (auto &track = driven.tracks[size_t(RyGltfPath::Rotation)])
            parts.rotation = track->rotation(seconds);
        if (auto &track = driven.tracks[size_t(RyGltfPath::Scale)])
            parts.scale = track->vector(seconds);
        driven.local = parts.transform().toAffine();
    }
    for (Chain &chain : m_chains) {
        if (!chain.isMoving)
            continue;
        const RyAffine &local = chain.driven >= 0 ? m_driven[size_t(chain.driven)].local : chain.local;
        chain.map = chain.next >= 0 ? local * m_chains[size_t(chain.next)].map : local;
    }
}
