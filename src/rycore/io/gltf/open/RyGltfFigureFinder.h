#pragma once

#include "rycore/io/gltf/open/RyGltfJointSet.h"

#include <vector>

/// `isLeftOut`: skins that make no figure; may be shorter than the list of skins. Nor do those make one that have no
/// joint in `preOrder`.
std::vector<RyGltfJointSet> ryGltfFindJointSets(const RyGltfModel &model, const std::vector<int> &preOrder,
                                                const std::vector<bool> &isLeftOut = {});
