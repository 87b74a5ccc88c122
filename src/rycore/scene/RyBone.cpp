#include "rycore/scene/RyBone.h"

#include "rycore/undo/RyValueChange.h"

struct RyBone::CarriedValue : RyValueOf<RyBone, RyBone::Carried>
{
    static const Value &get(const RyBone &bone) { return bone.m_carried; }
    static void put(RyBone &bone, const Value &carried) { bone.m_carried = carried; }
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

RyElement *RyBone::doDuplicateElement(RyElementDuplicateContext *context)
{
    RyElement *duplicate = RyNode::doDuplicateElement(context);
    if (auto *bone = qobject_cast<RyBone *>(duplicate))
        bone->copyCarried(*this);
    return duplicate;
}
