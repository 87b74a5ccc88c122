#pragma once

#include "rycore/io/gltf/save/RyGltfScenePatch.h"

#include <optional>
#include <set>

/// Writes values of morphs that are others than they were read into the weights of the nodes that show them. What the
/// file says of the morphs themselves stays; those that it does not have are added to its meshes. Nodes, skins and
/// meshes must have been written.
class RyGltfMorphPatch
{
public:
    explicit RyGltfMorphPatch(RyGltfScenePatch &patch) : m_patch(patch) {}

    /// `losses` gets what could not be written, for which the format has a place.
    void apply(QStringList *losses);

private:
    using Morphs = std::vector<const RyMorph *>;

    void writeKnown(const RyGltfFigureSource &figure, const RyShape &shape);
    void write(const RyGltfMorphSource::Target &target, float value);
    bool canTakeMore(const RyGltfFigureSource &figure, int node) const;
    void addTo(const RyGltfFigureSource &figure, int node, const RyShape &shape, const Morphs &morphs);
    std::optional<RyAffine> meshToFigure(const RyGltfPartSource &part) const;
    size_t countTargets(int mesh) const;
    nlohmann::ordered_json &weightsOf(int node);

    RyGltfScenePatch &m_patch;
};
