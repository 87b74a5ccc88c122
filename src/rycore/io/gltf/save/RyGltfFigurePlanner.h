#pragma once

#include "rycore/io/gltf/save/RyGltfFigurePlan.h"
#include "rycore/io/gltf/save/RyGltfScenePatch.h"

/// Decides what of an edited figure has to be written: as little as says what the scene says. Writes nothing itself.
class RyGltfFigurePlanner
{
public:
    explicit RyGltfFigurePlanner(const RyGltfScenePatch &patch) : m_patch(patch) {}

    RyGltfFigurePlan plan(const RyGltfFigureSource &source) const;

private:
    using Figure = RyGltfFigurePlan;
    using Skin = RyGltfSkinPlan;

    bool mustBeRebuilt(const RyGltfFigureSource &source, bool weightsAreOther) const;
    void keepJoints(Figure &figure) const;
    void addJoints(Figure &figure) const;
    Skin &skinFor(Figure &figure, const RyBone &bone) const;
    size_t placeOfSkin(const Figure &figure, int skin) const;
    void findDirtyParts(Figure &figure, const std::vector<bool> &changed) const;
    void addNeededJoints(Figure &figure) const;

    const RyGltfScenePatch &m_patch;
};
