#include "rycore/figure/pairing/RyBonePairing.h"

#include "rycore/figure/pairing/RyNameMarks.h"
#include "rycore/scene/RyNode.h"

RyBonePairing::RyBonePairing(const RySkeleton &skeleton, int axis, const RySidePrefixes &prefixes)
    : m_rig(skeleton, axis), m_skeleton(&skeleton), m_prefixes(prefixes), m_lookup(prefixes)
{
    for (const RyPairingRig::Member &member : m_rig.members) {
        m_places.insert(member.node, int(m_places.size()));
        m_lookup.add(*member.node, member.figure);
    }
    pairByPrefixes();
    pairByMarks(m_rig);
    pairByPlace(m_rig);
}

/// The first hit of each node is its partner, also where that one belongs to another.
void RyBonePairing::pairByPrefixes()
{
    for (RyPairingRig::Member &member : m_rig.members) {
        const int found = m_lookup.find(member.node->getName(), member.figure, RySide::None);
        if (found < 0)
            continue;
        member.partner = found;
        member.side = m_prefixes.sideOf(member.node->getName());
        member.stage = m_rig.members[size_t(found)].stage = Stage::Prefix;
    }
}

std::vector<RyNode *> RyBonePairing::nodes() const
{
    std::vector<RyNode *> nodes;
    for (const RyPairingRig::Member &member : m_rig.members)
        nodes.push_back(member.node);
    return nodes;
}

std::vector<RyNode *> RyBonePairing::own() const
{
    std::vector<RyNode *> nodes;
    for (const RyPairingRig::Member &member : m_rig.members) {
        if (member.figure == m_skeleton)
            nodes.push_back(member.node);
    }
    return nodes;
}

std::vector<RyBonePairing::Pair> RyBonePairing::pairs() const
{
    std::vector<Pair> pairs;
    for (int i = 0; i < int(m_rig.members.size()); ++i) {
        const RyPairingRig::Member &member = m_rig.members[size_t(i)];
        if (member.partner < 0 || member.partner == i)
            continue;
        const RyPairingRig::Member &other = m_rig.members[size_t(member.partner)];
        if (member.partner > i || other.partner != i)
            pairs.push_back({member.node, other.node, member.stage});
    }
    return pairs;
}

std::vector<RyNode *> RyBonePairing::alone() const
{
    std::vector<RyNode *> nodes;
    for (const RyPairingRig::Member &member : m_rig.members) {
        if (member.isBone && member.stage == Stage::None)
            nodes.push_back(member.node);
    }
    return nodes;
}

RyNode *RyBonePairing::oppositeOf(const RyNode *node, RySide side) const
{
    const int place = placeOf(node);
    if (place < 0)
        return nullptr;
    const RyPairingRig::Member &member = m_rig.members[size_t(place)];
    int found = -1;
    if (member.stage == Stage::Prefix || member.stage == Stage::None)
        found = m_lookup.find(node->getName(), member.figure, side);
    else if (side == RySide::None || side == member.side)
        found = member.partner;
    return found < 0 ? nullptr : m_rig.members[size_t(found)].node;
}

RySide RyBonePairing::sideOf(const RyNode *node) const
{
    if (!node)
        return RySide::None;
    const int place = placeOf(node);
    if (place >= 0 && m_rig.members[size_t(place)].partner >= 0)
        return m_rig.members[size_t(place)].side;
    const RyNameMarks marks(node->getName());
    if (!marks.isEmpty())
        return marks.marks().front().isLeft ? RySide::Left : RySide::Right;
    return m_prefixes.sideOf(node->getName());
}

RyBonePairing::Stage RyBonePairing::stageOf(const RyNode *node) const
{
    const int place = placeOf(node);
    return place < 0 ? Stage::None : m_rig.members[size_t(place)].stage;
}

RyNode *RyBonePairing::mutualOf(const RyNode *node) const
{
    RyNode *opposite = oppositeOf(node);
    return opposite && opposite != node && oppositeOf(opposite) == node ? opposite : nullptr;
}

bool RyBonePairing::isOnPlane(const RyNode *node) const
{
    return stageOf(node) == Stage::None && placeOf(node) >= 0 && !m_rig.isOffMiddle(node->getOrigin(true)) &&
           !m_rig.isOffMiddle(node->getEndPoint(true));
}

float RyBonePairing::meanOffset() const
{
    const std::vector<Pair> all = pairs();
    double sum = 0.0;
    for (const Pair &pair : all)
        sum += 0.5 * (double(pair.first->getOrigin(true)[axis()]) + double(pair.second->getOrigin(true)[axis()]));
    return all.empty() ? 0.0f : float(sum / double(all.size()));
}
