#pragma once

#include "rycore/io/gltf/document/RyGltfReferences.h"

#include <nlohmann/json.hpp>

#include <array>
#include <functional>
#include <vector>

/// Meshes, materials, textures and images that we made and that nothing uses any more. Those behind them move up when
/// they go, so that only those count that stand behind every number in an extension whose references nobody here knows.
class RyGltfUnusedLooks
{
public:
    using Json = nlohmann::ordered_json;

    /// `unusedNodes`: what they use does not count.
    RyGltfUnusedLooks(const Json &tree, const std::vector<int> &unusedNodes);

    /// In ascending order.
    const std::vector<int> &of(RyGltfList list) const { return m_unused[size_t(list)]; }
    bool isEmpty() const;
    /// Takes them out of their lists.
    void drop(Json &tree) const;

private:
    using Use = std::function<void(RyGltfList to, int index)>;
    static void visitUses(const Json &entry, RyGltfList list, const Use &use);
    bool isUnused(RyGltfList list, size_t index) const;
    void renumber(Json &tree) const;
    int placeOf(RyGltfList list, int index) const;

    std::array<std::vector<int>, ryGltfListCount> m_unused;
};
