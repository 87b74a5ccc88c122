#include "rycore/skin/RyBulgeBinding.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/RyPropertyGroup.h"
#include "rycore/scene/RyBone.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyValueChange.h"

namespace {

constexpr const char *ControllerNames[4] = {"PosLeft", "NegLeft", "PosRight", "NegRight"};

} // namespace

/// One of the two maps.
struct RyBulgeBinding::MapValue : RySlotOf<RyBulgeBinding, RyRef<RyWeightMap>, 2>
{
    using RySlotOf::RySlotOf;
    const Value &get(const RyBulgeBinding &bulge) const { return bulge.m_weights[slot]; }
    void put(RyBulgeBinding &bulge, const Value &map) const { bulge.applyWeights(slot, map); }
};

RyBulgeBinding::RyBulgeBinding(int axis) : m_axis(axis < 0 || axis > 2 ? 0 : axis)
{
    RyPropertyGroup *group = createPublicGroups("Bulges");
    for (int i = 0; i < 4; ++i)
        m_controllers[size_t(i)] = group->addProperty(std::make_unique<RyFloatProperty>(this, controllerName(i)));
}

void RyBulgeBinding::getBulgeValues(float &posLeft, float &negLeft, float &posRight, float &negRight) const
{
    posLeft = m_controllers[0]->getValue();
    negLeft = m_controllers[1]->getValue();
    posRight = m_controllers[2]->getValue();
    negRight = m_controllers[3]->getValue();
}

void RyBulgeBinding::adjustBulgeValues(float posLeft, float negLeft, float posRight, float negRight)
{
    beginEdit();
    m_controllers[0]->adjustValue(posLeft);
    m_controllers[1]->adjustValue(negLeft);
    m_controllers[2]->adjustValue(posRight);
    m_controllers[3]->adjustValue(negRight);
    finishEdit();
}

void RyBulgeBinding::setWeights(int side, RyWeightMap *map)
{
    if (m_weights[side].get() == map)
        return;
    const RyRef<RyWeightMap> guard(map);
    RyValueChange<MapValue>::record(this, MapValue(side));
    applyWeights(side, guard);
}

void RyBulgeBinding::applyWeights(int side, const RyRef<RyWeightMap> &map)
{
    if (RyWeightMap *old = m_weights[side].get(); old && old != m_weights[1 - side].get())
        disconnect(old, nullptr, this, nullptr);
    m_weights[side] = map;
    if (map)
        connect(map.get(), &RyWeightMap::weightsChanged, this, &RyBulgeBinding::weightsChanged, Qt::UniqueConnection);
    ++m_revision;
    emit weightsChanged();
}

void RyBulgeBinding::propertyChanged(RyFloatProperty *)
{
    // What the skin does differs, what it is made of stays.
    if (RySkinBinding *skin = m_binding ? m_binding->getSkin() : nullptr)
        emit skin->modifierChanged();
}

QString RyBulgeBinding::controllerName(int index) const
{
    const QString own = QString("bulge%1%2").arg(QChar('X' + m_axis)).arg(ControllerNames[index]);
    const RyBone *bone = m_binding ? m_binding->getBone() : nullptr;
    return bone ? bone->getName() + '_' + own : own;
}

void RyBulgeBinding::updatePropertyNames()
{
    for (int i = 0; i < 4; ++i)
        m_controllers[size_t(i)]->setName(controllerName(i));
}

RyBulgeBinding *RyBulgeBinding::copy(bool withMaps) const
{
    auto *bulge = new RyBulgeBinding(m_axis);
    bulge->setObjectName(objectName());
    for (int i = 0; i < 4; ++i) {
        bulge->m_controllers[size_t(i)]->setObjectName(m_controllers[size_t(i)]->objectName());
        bulge->m_controllers[size_t(i)]->copyFrom(*m_controllers[size_t(i)]);
    }
    for (int side = 0; side < 2 && withMaps; ++side) {
        if (m_weights[side])
            bulge->applyWeights(side, RyRef<RyWeightMap>(m_weights[side]->copy()));
    }
    return bulge;
}
