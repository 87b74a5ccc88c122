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
    m_places.reserve(m_bones.size());
    for (const RyBone *bone : m_bones)
        m_places.emplace_back(bone, int(m_places.size()));
    std::sort(m_places.begin(), m_places.end(),
              [](const auto &a, const auto &b) { return std::less<const RyNode *>()(a.first, b.first); });
}

int RyBoneIndex::find(const RyNode *node) const
{
    const auto found =
        std::lower_bound(m_places.begin(), m_places.end(), node, [](const auto &place, const RyNode *value) {
            return std::less<const RyNode *>()(place.first, value);
        });
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
