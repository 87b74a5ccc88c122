#include "pluginsource/RyJointTools/operations/RyBranchPlacement.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"

std::vector<RyNode *> bonesBelow(const RyNode *node)
{
    std::vector<RyNode *> nodes;
    node->getNodeChildren(nodes, true);
    const RySkeleton *skeleton = node->getSkeleton();
    std::erase_if(nodes, [skeleton](const RyNode *below) {
        return !qobject_cast<const RyBone *>(below) || below->getSkeleton() != skeleton;
    });
    return nodes;
}

RyBranchPlacement::RyBranchPlacement(RyNode *node) : m_node(node), m_endPoint(node->getEndPoint())
{
    const std::vector<RyNode *> bones = bonesBelow(node);
    m_descendants.reserve(bones.size());
    for (RyNode *bone : bones)
        m_descendants.push_back({bone, bone->getOrigin(), bone->getEndPoint()});
}

void RyBranchPlacement::moveEndPoint(const RyVec3 &way) const
{
    if (m_node)
        m_node->adjustEndPoint(m_endPoint + way);
}

void RyBranchPlacement::moveDescendants(const RyVec3 &way) const
{
    for (const Place &place : m_descendants) {
        if (!place.bone)
            continue;
        place.bone->adjustOrigin(place.origin + way);
        place.bone->adjustEndPoint(place.endPoint + way);
    }
}
