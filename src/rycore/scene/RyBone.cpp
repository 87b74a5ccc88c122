#include "rycore/scene/RyBone.h"

#include "rycore/undo/RyValueChange.h"

struct RyBone::CarriedValue : RyValueOf<RyBone, RyBone::Carried>
{
    static const Value &get(const RyBone &bone) { return bone.m_carried; }
    static void put(RyBone &bone, const Value &carried) { bone.m_carried = carried; }
};

struct RyBone::GiverValue : RyValueOf<RyBone, RyRef<RyBone>>
{
    static const Value &get(const RyBone &bone) { return bone.m_weightGiver; }
    static void put(RyBone &bone, const Value &giver) { bone.m_weightGiver = giver; }
};

RyBone::RyBone() = default;

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

void RyBone::setWeightGiver(RyBone *giver)
{
    // Two that hold each other would never go.
    for (const RyBone *bone = giver; bone; bone = bone->getWeightGiver()) {
        if (bone == this)
            return;
    }
    if (giver == getWeightGiver())
        return;
    RyValueChange<GiverValue>::record(this);
    m_weightGiver = giver;
}

RyElement *RyBone::doDuplicateElement(RyElementDuplicateContext *context)
{
    RyElement *duplicate = RyNode::doDuplicateElement(context);
    if (auto *bone = qobject_cast<RyBone *>(duplicate))
        bone->copyCarried(*this);
    return duplicate;
}
