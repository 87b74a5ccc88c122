#include "ryforeign/RyForeignSkin.h"

#include <assimp/scene.h>

RyForeignSkin::RyForeignSkin(const RyForeignInput &input, const RyForeignTree &tree, const RyForeignBinds &binds,
                             int meshNode)
    : m_tree(tree), m_binds(binds), m_meshNode(meshNode)
{
    const aiNode &source = *tree.nodes[size_t(meshNode)].source;
    for (unsigned m = 0; m < source.mNumMeshes; ++m) {
        const aiMesh &mesh = *input.scene->mMeshes[source.mMeshes[m]];
        for (unsigned b = 0; b < mesh.mNumBones; ++b)
            add(tree.find(mesh.mBones[b]->mName), mesh.mBones[b]);
    }
}

void RyForeignSkin::add(int joint)
{
    add(joint, nullptr);
}

void RyForeignSkin::add(int joint, const aiBone *bone)
{
    if (joint < 0 || !m_tree.nodes[size_t(joint)].isJoint || !m_placeOf.emplace(joint, int(joints.size())).second)
        return;
    joints.push_back(joint);
    inverseBinds.push_back(m_binds.inverseBind(m_meshNode, joint, bone));
}

std::vector<int> RyForeignSkin::placesOf(const aiMesh &mesh) const
{
    std::vector<int> places;
    for (unsigned b = 0; b < mesh.mNumBones; ++b) {
        const auto found = m_placeOf.find(m_tree.find(mesh.mBones[b]->mName));
        places.push_back(found == m_placeOf.end() ? -1 : found->second);
    }
    return places;
}
