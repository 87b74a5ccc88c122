#pragma once

#include "rycore/io/gltf/document/RyGltfModel.h"

#include <map>
#include <vector>

/// A connected set of joints: skins that share a joint, or whose joints stand above one another, belong together. Nodes
/// on the way between two joints of the set are bones too.
class RyGltfJointSet
{
public:
    std::vector<int> bones;   ///< node indices, pre-order of the file
    std::vector<int> parents; ///< in step: index into `bones`, -1 for a root
    std::vector<int> skins;   ///< in order of their topmost joint

    /// Gives the bone's place.
    int addBone(int node, int parent);
    /// Place of a node of the file in `bones`, -1 for none.
    int boneOf(int node) const;
    /// Places of a skin's joints, which must be of this set.
    std::vector<int> bonesOf(const RyGltfSkin &skin) const;
    /// Place of a skin of the file in `skins`, -1 for none.
    int placeOfSkin(int skin) const;

private:
    std::map<int, int> m_boneOf;
};
