#include "rycore/base/RyFloatProperty.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyFloatPropertyChange.h"
#include "rycore/base/RyLinkGraph.h"
#include "rycore/undo/RyUndoStack.h"

#include <algorithm>
#include <cmath>

namespace {

/// A property that is announcing itself. Tells whether it was deleted meanwhile, as a QPointer would, but without
/// something to be allocated and kept for each property that ever changed.
class Announcing
{
public:
    explicit Announcing(const RyFloatProperty *property) : m_property(property), m_outer(s_innermost)
    {
        s_innermost = this;
    }
    ~Announcing() { s_innermost = m_outer; }
    Announcing(const Announcing &) = delete;
    Announcing &operator=(const Announcing &) = delete;

    bool isAlive() const { return m_property; }
    static void forget(const RyFloatProperty *property)
    {
        for (Announcing *each = s_innermost; each; each = each->m_outer) {
            if (each->m_property == property)
                each->m_property = nullptr;
        }
    }

private:
    static Announcing *s_innermost;
    const RyFloatProperty *m_property;
    Announcing *const m_outer;
};

Announcing *Announcing::s_innermost = nullptr;

} // namespace

RyFloatProperty::RyFloatProperty(RyElement *owner, const QString &name, float defaultValue)
    : RyProperty(owner, name), m_raw(std::isfinite(defaultValue) ? defaultValue : 0.0f), m_value(m_raw),
      m_announced(m_raw), m_default(m_raw)
{}

RyFloatProperty::~RyFloatProperty()
{
    Announcing::forget(this);
    while (!m_incoming.empty() || !m_outgoing.empty()) { // who hears of one that goes may make another
        while (!m_incoming.empty())
            m_incoming.back()->detach(false);
        if (!m_outgoing.empty())
            m_outgoing.back()->detach();
    }
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

QString RyFloatProperty::getFullLabel() const
{
    const QString owner = getOwner() ? getOwner()->getLabel() : QString();
    return owner.isEmpty() ? getLabel() : owner + QStringLiteral(": ") + getLabel();
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
    update();
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
    const bool isAlone = m_outgoing.empty();
    const Dependents dependents = isAlone ? Dependents() : workOutDependents(true);
    if (isAlone)
        workOut();
    const Announcing announcing(this);
    if (RyElement *owner = getOwner())
        owner->propertyDefaultChanged(this);
    if (announcing.isAlive())
        emit defaultValueChanged();
    announce(dependents);
    if (isAlone && announcing.isAlive())
        announceIfChanged();
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

    const bool defaultChanged = before.defaultValue != wanted.defaultValue;
    const bool isAlone = m_outgoing.empty();
    const Dependents dependents = isAlone ? Dependents() : workOutDependents(defaultChanged);
    if (isAlone)
        workOut();
    const Announcing announcing(this);
    if (before.min != wanted.min || before.max != wanted.max || before.clamped != wanted.clamped)
        emit limitsChanged();
    if (announcing.isAlive() && defaultChanged && getValue() == m_announced && getOwner())
        getOwner()->propertyDefaultChanged(this);
    if (announcing.isAlive() && defaultChanged)
        emit defaultValueChanged();
    announce(dependents);
    if (isAlone && announcing.isAlive())
        announceIfChanged();
}

void RyFloatProperty::workOut()
{
    m_value = m_incoming.empty() ? m_raw : m_raw + linkedShare();
}

/// The resulting values of this property and of what hangs on it, which are given in the order in which they are to be
/// announced.
RyFloatProperty::Dependents RyFloatProperty::workOutDependents(bool defaultChanged)
{
    const float before = m_value;
    workOut();
    if (m_outgoing.empty() || (m_value == before && !defaultChanged))
        return {this};
    const std::vector<RyFloatProperty *> dependents = RyLinkGraph::dependents(this);
    for (RyFloatProperty *property : dependents)
        property->workOut();
    return {dependents.begin(), dependents.end()};
}

void RyFloatProperty::update()
{
    if (!m_outgoing.empty()) {
        announce(workOutDependents(false));
        return;
    }
    workOut();
    announceIfChanged();
}

// A listener may write this property again or delete it: what it wrote was announced then, and nothing is left to tell.
void RyFloatProperty::announceIfChanged()
{
    if (m_value == m_announced)
        return;
    m_announced = m_value;
    const Announcing announcing(this);
    if (RyElement *owner = getOwner())
        owner->propertyChanged(this);
    if (announcing.isAlive())
        emit currentValueChanged();
}

void RyFloatProperty::announce(const Dependents &properties)
{
    for (const QPointer<RyFloatProperty> &property : properties) {
        if (property)
            property->announceIfChanged();
    }
}
