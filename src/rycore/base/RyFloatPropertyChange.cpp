#include "rycore/base/RyFloatPropertyChange.h"

static const char stateAspect = 0;

RyFloatPropertyChange::RyFloatPropertyChange(RyFloatProperty *property)
    : m_property(property), m_key(keyOf(property)), m_kept(property->state()), m_written(m_kept)
{}

RyUndoKey RyFloatPropertyChange::keyOf(const RyFloatProperty *property)
{
    return {property, quintptr(&stateAspect)};
}

void RyFloatPropertyChange::prepare()
{
    if (m_property)
        m_inPlace = m_property->state();
}

void RyFloatPropertyChange::swap()
{
    if (!m_property)
        return;
    m_written = m_kept;
    m_kept = m_inPlace.value_or(m_property->state());
    m_inPlace.reset();
    m_property->restore(m_written);
}

bool RyFloatPropertyChange::settle()
{
    if (!m_property || m_property->state() == m_written)
        return false;
    m_property->restore(m_written);
    return true;
}
