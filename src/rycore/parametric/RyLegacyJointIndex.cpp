#include "rycore/parametric/RyLegacyJointIndex.h"

#include "rycore/parametric/RyLegacyJoint.h"
#include "rycore/scene/RyBone.h"

#include <QMultiHash>

using Index = QMultiHash<const RyNode *, RyLegacyJoint *>;

static Index &index()
{
    static auto *all = new Index; // joints may outlive what is destroyed at the end
    return *all;
}

void RyLegacyJointIndex::insert(RyLegacyJoint *joint)
{
    joint->m_indexedBone = joint->getBone();
    if (joint->m_indexedBone)
        index().insert(joint->m_indexedBone, joint);
}

void RyLegacyJointIndex::remove(RyLegacyJoint *joint)
{
    index().remove(joint->m_indexedBone, joint);
    joint->m_indexedBone = nullptr;
}

std::vector<RyLegacyJoint *> RyLegacyJointIndex::jointsOf(const RyNode *bone)
{
    std::vector<RyLegacyJoint *> joints;
    const auto [first, last] = index().equal_range(bone);
    for (auto each = bone ? first : last; each != last; ++each) {
        // A bone that was deleted may have had the same address.
        if ((*each)->getBone() == bone)
            joints.push_back(*each);
    }
    return joints;
}
