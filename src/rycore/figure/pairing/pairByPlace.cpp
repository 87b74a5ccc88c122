#include "rycore/figure/pairing/RyNameMarks.h"
#include "rycore/figure/pairing/RyPairingRig.h"

#include "rycore/scene/RyNode.h"

#include <algorithm>

// Of the size of the rig, and of the bones that have nothing but their place.
static constexpr float nearShare = 0.02f;
static constexpr double symmetricShare = 0.6;

/// The nearest of the bones to where another one would stand on its other side; -1 for none that is near.
static int nearestOpposite(const RyPairingRig &rig, int bone, const std::vector<int> &bones)
{
    const float side = rig.members[size_t(bone)].origin[rig.axis];
    int nearest = -1;
    float least = nearShare * rig.size;
    for (const int other : bones) {
        const bool isAcross = rig.members[size_t(other)].origin[rig.axis] * side < 0.0f;
        if (!isAcross)
            continue;
        const float gap = rig.gap(bone, other);
        if (gap <= least && (nearest < 0 || gap < least) && !rig.isOneAbove(bone, other)) {
            nearest = other;
            least = gap;
        }
    }
    return nearest;
}

void pairByPlace(RyPairingRig &rig)
{
    std::vector<int> bones;
    for (int i = 0; i < int(rig.members.size()); ++i) {
        const RyPairingRig::Member &member = rig.members[size_t(i)];
        if (rig.isFree(i) && rig.isOffMiddle(member.origin) && RyNameMarks(member.node->getName()).isEmpty())
            bones.push_back(i);
    }
    QHash<int, int> nearest;
    for (const int bone : bones)
        nearest.insert(bone, nearestOpposite(rig, bone, bones));
    std::vector<int> mutual;
    std::copy_if(bones.begin(), bones.end(), std::back_inserter(mutual),
                 [&nearest](int bone) { return nearest.value(nearest[bone], -1) == bone; });
    if (double(mutual.size()) < symmetricShare * double(bones.size()))
        return;
    for (const int bone : mutual) {
        const bool isLeft = rig.members[size_t(bone)].origin[rig.axis] > 0.0f;
        const RySide side = rig.axis != 0 ? RySide::None : isLeft ? RySide::Left : RySide::Right;
        if (rig.isFree(bone))
            rig.join(bone, nearest[bone], RyPairingRig::Stage::Place, side);
    }
}
