#pragma once

#include "rycore/io/gltf/save/RyGltfScenePatch.h"
#include "rycore/io/gltf/save/RyGltfStrayVertices.h"

/// How the vertices of a figure were turned and scaled by poses that became its rest, each by its bones: exact after
/// one such pose, near after several. Empty where no bone was carried on.
std::vector<RyGltfLinear> ryGltfCarriedLinear(const RyNode &figure, int vertexCount);

/// Vertices between several joints whose rest was carried on: they were blended in the pose that became the rest, and
/// are blended again by every other pose, of a clip as well.
class RyGltfCarriedVertices : public RyGltfStrayVertices
{
public:
    explicit RyGltfCarriedVertices(const RyGltfScenePatch &patch);

private:
    void addFigure(const RyGltfFigureSource &figure);

    const RyGltfScenePatch &m_patch;
};
