#include "rycore/scene/RyBone.h"

#include "rycore/undo/RyValueChange.h"

#include <atomic>

struct RyBone::CarriedValue : RyValueOf<RyBone, RyBone::Carried>
{
    static const Value &get(const RyBone &bone) { return bone.m_carried; }
    static void put(RyBone &bone, const Value &carried) { bone.m_carried = carried; }
};

struct RyBone::GiversValue : RyValueOf<RyBone, std::vector<quint64>>
{
    static const Value &get(const RyBone &bone) { return bone.m_weightGivers; }
    static void put(RyBone &bone, const Value &givers) { bone.m_weightGivers = givers; }
};

static quint64 nextSerial()
{
    static std::atomic<quint64> last{0};
    return ++last;
}

RyBone::RyBone() : m_serial(nextSerial()) {}

RyOrientedBox3 RyBone::getOrientedBoundingBox() const
{
    RyOrientedBox3 oriented;
    oriented.box = boxInParameterSpace();
    return oriented;
}

void RyBone::carry(const Carried &further)
{
    if (further == Carried())
        return;
    RyValueChange<CarriedValue>::record(this);
    m_carried = {m_carried.map * further.map, (m_carried.turn * further.turn).normalized()};
}

void RyBone::setWeightGiver(const RyBone *giver)
{
    std::vector<quint64> givers;
    if (giver) {
        givers.push_back(giver->m_serial);
        givers.insert(givers.end(), giver->m_weightGivers.begin(), giver->m_weightGivers.end());
    }
    if (givers == m_weightGivers)
        return;
    RyValueChange<GiversValue>::record(this);
    m_weightGivers = std::move(givers);
}

RyElement *RyBone::doDuplicateElement(RyElementDuplicateContext *context)
{
    RyElement *duplicate = RyNode::doDuplicateElement(context);
    if (auto *bone = qobject_cast<RyBone *>(duplicate))
        bone->copyCarried(*this);
    return duplicate;
}
