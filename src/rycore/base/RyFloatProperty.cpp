#include "rycore/base/RyFloatProperty.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyFloatPropertyChange.h"
#include "rycore/undo/RyUndoStack.h"

#include <QPointer>

#include <algorithm>
#include <cmath>

RyFloatProperty::RyFloatProperty(RyElement *owner, const QString &name, float defaultValue)
    : RyProperty(owner, name), m_raw(std::isfinite(defaultValue) ? defaultValue : 0.0f), m_announced(m_raw),
      m_default(m_raw)
{}

RyFloatProperty::~RyFloatProperty()
{
    while (!m_incoming.empty())
        m_incoming.back()->detach(false);
    while (!m_outgoing.empty())
        m_outgoing.back()->detach();
}

float RyFloatProperty::linkedShare() const
{
    double sum = 0.0;
    for (const RyERCLink *link : m_incoming)
        sum += double(link->contribution());
    return float(sum);
}

float RyFloatProperty::clamp(float value) const
{
    return m_clamped ? std::min(std::max(value, m_min), m_max) : value;
}

float RyFloatProperty::getValue() const
{
    return m_incoming.empty() ? m_raw : m_raw + linkedShare();
}

void RyFloatProperty::setValue(float value)
{
    if (!std::isfinite(value))
        return;
    const float clamped = clamp(value);
    if (clamped == m_raw)
        return;
    recordChange();
    m_raw = clamped;
    announceIfChanged();
}

void RyFloatProperty::adjustValue(float value)
{
    setValue(m_incoming.empty() ? value : value - linkedShare());
}

void RyFloatProperty::setDefaultValue(float value)
{
    if (!std::isfinite(value) || value == m_default)
        return;
    recordChange();
    m_default = value;
    const QPointer<RyFloatProperty> guard(this);
    if (RyElement *owner = getOwner())
        owner->propertyDefaultChanged(this);
    if (guard)
        emit defaultValueChanged();
    if (guard)
        announceControlled();
}

void RyFloatProperty::setIsClamped(bool clamped)
{
    if (clamped == m_clamped)
        return;
    recordChange();
    m_clamped = clamped;
    emit limitsChanged();
}

void RyFloatProperty::setMin(float min)
{
    if (!std::isfinite(min) || min == m_min)
        return;
    recordChange();
    m_min = min;
    emit limitsChanged();
}

void RyFloatProperty::setMax(float max)
{
    if (!std::isfinite(max) || max == m_max)
        return;
    recordChange();
    m_max = max;
    emit limitsChanged();
}

void RyFloatProperty::copyFrom(const RyFloatProperty &other)
{
    if (other.hasOwnLabel())
        setLabel(other.getLabel());
    if (other.state() == state())
        return;
    recordChange();
    restore(other.state());
}

void RyFloatProperty::recordChange()
{
    if (RyUndoStack *stack = ryUndoStack())
        stack->record<RyFloatPropertyChange>(RyFloatPropertyChange::keyOf(this), this);
}

void RyFloatProperty::restore(const State &wanted)
{
    const State before = state();
    m_raw = wanted.raw;
    m_default = wanted.defaultValue;
    m_min = wanted.min;
    m_max = wanted.max;
    m_clamped = wanted.clamped;

    const QPointer<RyFloatProperty> guard(this);
    if (before.min != wanted.min || before.max != wanted.max || before.clamped != wanted.clamped)
        emit limitsChanged();
    const bool defaultChanged = before.defaultValue != wanted.defaultValue;
    if (guard && defaultChanged && getValue() == m_announced && getOwner())
        getOwner()->propertyDefaultChanged(this);
    if (guard && defaultChanged)
        emit defaultValueChanged();
    if (guard)
        announceIfChanged();
    if (guard && defaultChanged)
        announceControlled();
}

// A listener may write this property again or delete it: what it wrote was announced then, and nothing is left to tell.
void RyFloatProperty::announceIfChanged()
{
    const float value = getValue();
    if (value == m_announced)
        return;
    m_announced = value;
    const QPointer<RyFloatProperty> guard(this);
    if (RyElement *owner = getOwner())
        owner->propertyChanged(this);
    if (guard)
        emit currentValueChanged();
    if (guard)
        announceControlled();
}

void RyFloatProperty::announceControlled()
{
    if (m_outgoing.empty())
        return;
    std::vector<QPointer<RyFloatProperty>> controlled;
    for (const RyERCLink *link : m_outgoing)
        controlled.emplace_back(link->getControlled());
    for (const QPointer<RyFloatProperty> &property : controlled) {
        if (property)
            property->announceIfChanged();
    }
}
