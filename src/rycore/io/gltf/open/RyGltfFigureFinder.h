#pragma once

#include "rycore/io/gltf/open/RyGltfJointSet.h"

#include <vector>

/// What makes no figure of its own, or one of its own; the lists may be shorter than those of the file.
struct RyGltfFigureMarks
{
    std::vector<bool> isLeftOut; // skins that make no figure
    std::vector<bool> carries;   // nodes that carry a figure: joints below do not belong to joints above
};

/// Skins without a joint in `preOrder` make no figure either.
std::vector<RyGltfJointSet> ryGltfFindJointSets(const RyGltfModel &model, const std::vector<int> &preOrder,
                                                const RyGltfFigureMarks &marks = {});
