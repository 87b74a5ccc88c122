#pragma once

#include "ryforeign/RyForeignBinds.h"

#include <unordered_map>

struct aiMesh;

/// The joints of one skinned node and how its mesh is bound to them.
class RyForeignSkin
{
public:
    RyForeignSkin(const RyForeignInput &input, const RyForeignTree &tree, const RyForeignBinds &binds, int meshNode);

    std::vector<int> joints; // nodes of the tree
    std::vector<RyAffine> inverseBinds;

    /// Adds a joint that no bone of these meshes names; known ones stay.
    void add(int joint);
    /// Places of a mesh's bones in the list of joints.
    std::vector<int> placesOf(const aiMesh &mesh) const;

private:
    void add(int joint, const aiBone *bone);

    const RyForeignTree &m_tree;
    const RyForeignBinds &m_binds;
    int m_meshNode;
    std::unordered_map<int, int> m_placeOf; // of joints
};
