#pragma once

#include "rycore/io/gltf/document/RyGltfModel.h"

#include <vector>

/// A connected set of joints: skins that share a joint, or whose joints stand above one another, belong together. Nodes
/// on the way between two joints of the set are bones too.
struct RyGltfJointSet
{
    std::vector<int> bones;   ///< node indices, pre-order of the file
    std::vector<int> parents; ///< in step: index into `bones`, -1 for a root
    std::vector<int> skins;   ///< in order of their topmost joint
};

/// `isLeftOut`: skins that make no figure; may be shorter than the list of skins. Nor do those make one that have no
/// joint in `preOrder`.
std::vector<RyGltfJointSet> ryGltfFindJointSets(const RyGltfModel &model, const std::vector<int> &preOrder,
                                                const std::vector<bool> &isLeftOut = {});
