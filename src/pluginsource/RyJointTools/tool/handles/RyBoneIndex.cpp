#include "pluginsource/RyJointTools/tool/handles/RyBoneIndex.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>
#include <functional>

void RyBoneIndex::refill(const RySkeleton *skeleton)
{
    m_refilled.clear();
    if (skeleton)
        skeleton->getAllBones(m_refilled);
    if (m_refilled == m_bones)
        return;
    m_bones.swap(m_refilled);
    m_places.clear();
}

int RyBoneIndex::find(const RyNode *node) const
{
    const auto isBefore = [](const auto &a, const auto &b) { return std::less<const RyNode *>()(a.first, b.first); };
    if (m_places.empty()) {
        for (const RyBone *bone : m_bones)
            m_places.emplace_back(bone, int(m_places.size()));
        std::sort(m_places.begin(), m_places.end(), isBefore);
    }
    const auto found = std::lower_bound(m_places.begin(), m_places.end(), std::pair(node, 0), isBefore);
    return found != m_places.end() && found->first == node ? found->second : -1;
}

RyBone *RyBoneIndex::boneAt(int index, const RySkeleton *skeleton) const
{
    if (index < 0 || index >= count() || !skeleton)
        return nullptr;
    const std::vector<RyBone *> present = skeleton->getAllBones();
    RyBone *bone = m_bones[size_t(index)];
    return std::find(present.begin(), present.end(), bone) != present.end() ? bone : nullptr;
}
