#pragma once

#include "rycore/io/gltf/clips/RyGltfClips.h"
#include "rycore/io/gltf/clips/RyGltfParts.h"
#include "rycore/io/gltf/play/RyGltfTrack.h"

/// Maps of nodes of a file while one of its clips plays: from a node's space to that of a node above it, or to the
/// world, in units of the file. What is above stands before what is below, so that a frame is one walk along an array.
class RyGltfChains
{
public:
    /// All of them are asked only while chains are added.
    RyGltfChains(const RyGltfModel &model, const RyGltfClips &clips, const RyGltfClip &clip)
        : m_model(model), m_clips(clips), m_clip(clip)
    {}

    /// The number of the chain from a node up to one above it; -1: up to the world.
    int add(int node, int above);
    void evaluate(double seconds);
    const RyAffine &map(int chain) const { return m_chains[size_t(chain)].map; }

private:
    /// A node with a channel.
    struct Driven
    {
        std::array<std::optional<RyGltfTrack>, 3> tracks; // by RyGltfPath
        RyGltfParts rest;
        RyAffine local;
    };
    struct Chain
    {
        RyAffine map;
        RyAffine local;  // of a node that nothing drives
        int driven = -1; // of `m_driven`
        int next = -1;   // the chain from the node's parent up, -1 where that is the end
        bool isMoving = false;
    };
    int drivenOf(int node);

    const RyGltfModel &m_model;
    const RyGltfClips &m_clips;
    const RyGltfClip &m_clip;
    std::vector<Driven> m_driven;
    std::vector<Chain> m_chains;
    std::map<int, int> m_drivenOf;
    std::map<std::pair<int, int>, int> m_chainOf; // by both ends
};
