#pragma once

#include "rycore/io/gltf/extras/RyGltfInfluences.h"

#include <cstdint>
#include <string>
#include <utility>

class RyGltfDocument;

/// Writes the influences of a skin as the vertex attributes JOINTS_n and WEIGHTS_n.
class RyGltfInfluenceWriter
{
public:
    explicit RyGltfInfluenceWriter(const RyGltfInfluences &influences) : m_influences(influences) {}

    /// How a part of a mesh is written: `places` says for each of the bones its place in the skin's list of joints;
    /// vertices are all of them in order without a list; at least `sets` sets of four.
    struct Part
    {
        std::vector<int> places;
        const std::vector<int> *vertexOfSplit = nullptr;
        size_t sets = 1;
    };
    size_t setsNeeded(const std::vector<int> *vertexOfSplit) const;
    using Numbers = std::vector<std::uint32_t>;
    /// Numbers of JOINTS_n and WEIGHTS_n, set by set. A vertex that nothing moves is held by the first joint, since the
    /// format has no other way to say so.
    std::vector<std::pair<Numbers, Numbers>> numbersOf(const Part &part) const;
    /// Adds the accessors and gives their attributes.
    std::vector<std::pair<std::string, int>> addTo(RyGltfDocument &document, const Part &part) const;

private:
    const RyGltfInfluences &m_influences;
};
