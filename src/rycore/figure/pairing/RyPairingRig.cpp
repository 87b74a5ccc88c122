#include "rycore/figure/pairing/RyPairingRig.h"

#include "rycore/math/RyBox3.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>
#include <cmath>

/// As a share of the size of the rig.
static constexpr float middleShare = 0.001f;

RyPairingRig::RyPairingRig(const RySkeleton &skeleton, int mirrorAxis) : axis(mirrorAxis)
{
    std::vector<RyNode *> nodes;
    skeleton.getNodeChildren(nodes, true);
    QHash<const RyNode *, int> places;
    RyBox3 box;
    for (RyNode *node : nodes) {
        const int place = int(members.size());
        places.insert(node, place);
        const bool isBone = qobject_cast<RyBone *>(node) && node->getSkeleton() == &skeleton;
        const RyNode *part = qobject_cast<RySkeleton *>(node) ? node->getNodeParent() : node;
        members.push_back({node, isBone, part ? part->getSkeleton() : nullptr, places.value(node->getNodeParent(), -1),
                           place, node->getOrigin(true)});
        if (isBone) {
            box.include(node->getOrigin(true));
            box.include(node->getEndPoint(true));
        }
    }
    for (size_t i = members.size(); i-- > 0;) {
        if (members[i].parent >= 0) {
            int &last = members[size_t(members[i].parent)].lastBelow;
            last = std::max(last, members[i].lastBelow);
        }
    }
    if (!box.isEmpty()) {
        const RyVec3 sides = box.getExtents();
        size = std::max({sides[0], sides[1], sides[2]});
    }
}

RyVec3 RyPairingRig::mirrored(const RyVec3 &point) const
{
    RyVec3 other = point;
    other[axis] = -other[axis];
    return other;
}

float RyPairingRig::gap(int i, int j) const
{
    return (mirrored(members[size_t(i)].origin) - members[size_t(j)].origin).length();
}

bool RyPairingRig::isOffMiddle(const RyVec3 &point) const
{
    return std::abs(point[axis]) > middleShare * size;
}

bool RyPairingRig::isOneAbove(int i, int j) const
{
    const auto [above, below] = std::minmax(i, j);
    return below <= members[size_t(above)].lastBelow;
}

void RyPairingRig::join(int i, int j, Stage stage, RySide sideOfFirst)
{
    const RySide other = sideOfFirst == RySide::Left    ? RySide::Right
                         : sideOfFirst == RySide::Right ? RySide::Left
                                                        : RySide::None;
    Member &first = members[size_t(i)];
    Member &second = members[size_t(j)];
    first.partner = j;
    second.partner = i;
    first.stage = second.stage = stage;
    first.side = sideOfFirst;
    second.side = other;
}
