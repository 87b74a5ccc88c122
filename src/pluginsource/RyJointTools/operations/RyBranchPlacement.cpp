#include "pluginsource/RyJointTools/operations/RyBranchPlacement.h"

#include "pluginsource/RyJointTools/operations/moveParams.h"

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

RyBranchPlacement::Place::Place(RyNode *placed, bool withParams)
    : node(placed), origin(placed->getOrigin()), endPoint(placed->getEndPoint())
{
    if (!withParams)
        return;
    for (RyLegacyJointParam *param : paramsAround(placed))
        params.emplace_back(*param);
}

void RyBranchPlacement::Place::followOrigin(const RyVec3 &way) const
{
    node->adjustEndPoint(endPoint + way);
    for (const RyParamPlacement &param : params)
        param.move(way);
}

RyBranchPlacement::RyBranchPlacement(RyNode *node, bool withParams) : m_place(node, withParams)
{
    const std::vector<RyNode *> bones = bonesBelow(node);
    m_descendants.reserve(bones.size());
    for (RyNode *bone : bones)
        m_descendants.emplace_back(bone, withParams);
}

void RyBranchPlacement::followOrigin(const RyVec3 &way) const
{
    if (!m_place.node)
        return;
    const RyBindingEdit edit(m_place.node);
    m_place.followOrigin(way);
}

void RyBranchPlacement::moveDescendants(const RyVec3 &way) const
{
    const RyBindingEdit edit(m_place.node);
    for (const Place &place : m_descendants) {
        if (!place.node)
            continue;
        place.node->adjustOrigin(place.origin + way);
        place.followOrigin(way);
    }
}
