#pragma once

#include "rycore/io/gltf/extras/RyGltfOrigin.h"
#include "rycore/io/gltf/open/RyGltfJointSet.h"
#include "rycore/io/gltf/open/RyGltfMeshBuilder.h"
#include "rycore/io/gltf/open/RyGltfMorphReader.h"
#include "rycore/io/gltf/open/RyGltfRest.h"

#include <nlohmann/json_fwd.hpp>

#include <memory>
#include <vector>

class RyBone;
class RySkeleton;
struct RyLegacyFit;

/// A figure while it is read.
struct RyGltfFigureDraft
{
    int place = -1;   // among the figures of the file
    int carrier = -1; // node that carries the figure, -1 for none
    RyGltfJointSet joints;
    RyGltfRest rest;
    std::vector<RyBone *> bones; // in step with the set's
    RySkeleton *figure = nullptr;
    RyGltfFigureSource source;
    int entry = -1;                                     // of what an earlier save stored
    const nlohmann::ordered_json *parametric = nullptr; // stored joints that fit the weights
    std::shared_ptr<RyLegacyFit> fit;                   // of a parametric figure: the file's weights
    std::unique_ptr<RyGltfMeshBuilder> mesh;
};
