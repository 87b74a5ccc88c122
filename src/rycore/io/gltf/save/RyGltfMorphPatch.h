#pragma once

#include "rycore/io/gltf/save/RyGltfScenePatch.h"

/// Writes values of morphs that are others than they were read into the weights of the nodes that show them. What the
/// file says of the morphs themselves stays. Nodes and meshes must have been written.
class RyGltfMorphPatch
{
public:
    explicit RyGltfMorphPatch(RyGltfScenePatch &patch) : m_patch(patch) {}

    void apply();

private:
    void write(const RyGltfMorphSource::Target &target, float value);

    RyGltfScenePatch &m_patch;
};
