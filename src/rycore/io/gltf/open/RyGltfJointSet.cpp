#include "rycore/io/gltf/open/RyGltfJointSet.h"

#include <algorithm>

int RyGltfJointSet::addBone(int node, int parent)
{
    const int bone = int(bones.size());
    bones.push_back(node);
    parents.push_back(parent);
    m_boneOf.emplace(node, bone);
    return bone;
}

int RyGltfJointSet::boneOf(int node) const
{
    const auto bone = m_boneOf.find(node);
    return bone == m_boneOf.end() ? -1 : bone->second;
}

std::vector<int> RyGltfJointSet::bonesOf(const RyGltfSkin &skin) const
{
    std::vector<int> result;
    for (const int joint : skin.joints)
        result.push_back(m_boneOf.at(joint));
    return result;
}

int RyGltfJointSet::placeOfSkin(int skin) const
{
    const auto place = std::find(skins.begin(), skins.end(), skin);
    return place == skins.end() ? -1 : int(place - skins.begin());
}
