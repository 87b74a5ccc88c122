#include "rycore/scene/RyMorph.h"

#include "rycore/base/RyPropertyGroup.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyShape.h"
#include "rycore/undo/RyValueChange.h"

#include <cmath>

struct RyMorph::DeltasValue : RyValueOf<RyMorph, std::vector<RyVec3>>
{
    static const Value &get(const RyMorph &morph) { return morph.m_deltas; }
    static void exchange(RyMorph &morph, Value &deltas)
    {
        morph.m_deltas.swap(deltas);
        emit morph.deltasChanged();
    }
};

RyMorph::RyMorph(const QString &name, std::vector<int> vertices, std::vector<RyVec3> deltas)
    : m_vertices(std::move(vertices)), m_deltas(std::move(deltas))
{
    setObjectName(name);
    auto control = std::make_unique<RyFloatProperty>(this, name);
    control->setMin(0.0f);
    control->setMax(1.0f);
    control->setIsClamped(true);
    m_control = control.get();
    m_kept = std::move(control);
}

RyMorph::~RyMorph()
{
    moveControl(nullptr);
}

void RyMorph::setDeltas(std::vector<RyVec3> deltas)
{
    if (deltas.size() != m_deltas.size() || deltas == m_deltas)
        return;
    RyValueChange<DeltasValue>::record(this);
    m_deltas = std::move(deltas);
    emit deltasChanged();
}

void RyMorph::moveControl(RyPropertyGroup *group)
{
    if (!m_control)
        return;
    if (RyPropertyGroup *before = m_control->getGroup())
        m_kept = before->takeProperty(m_control);
    if (group && m_kept)
        group->addProperty(std::move(m_kept));
}

float RyMorph::shownValue() const
{
    return m_played ? *m_played : m_control ? m_control->getValue() : 0.0f;
}

void RyMorph::setPlayedValue(std::optional<float> value)
{
    if (value && !std::isfinite(*value))
        value.reset();
    const float before = shownValue();
    m_played = value;
    if (shownValue() != before)
        emit shownValueChanged();
}

void RyMorph::propertyChanged(RyFloatProperty *)
{
    if (!m_played)
        emit shownValueChanged();
}

RyNode *RyMorph::getNode() const
{
    const RyObject *object = m_shape ? m_shape->getObject() : nullptr;
    return object ? object->getNode() : nullptr;
}

RyNode *RyMorph::nodeOf(const RyProperty &property)
{
    RyElement *owner = property.getOwner();
    const auto *morph = qobject_cast<const RyMorph *>(owner);
    return morph ? morph->getNode() : qobject_cast<RyNode *>(owner);
}
