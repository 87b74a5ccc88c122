#include "rycore/scene/node/RyNodeEdit.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/node/RyNodePose.h"
#include "rycore/scene/node/RyNodeRigging.h"

void RyNodeEdit::begin(const RyNodeRigging &rigging, const RyNodePose &pose)
{
    const auto keep = [this](const RyFloatProperty *property) {
        m_values.push_back(property->getRawValue());
        m_values.push_back(property->getDefaultValue());
    };
    m_values.clear();
    m_values.reserve(2 * (RyNodeRigging::Controls().size() + RyNodePose::Controls().size()));
    for (const RyFloatProperty *property : rigging)
        keep(property);
    for (const RyFloatProperty *property : pose)
        keep(property);
    m_riggingTouched = false;
}

void RyNodeEdit::finish()
{
    m_values = {}; // nothing is kept in each of the nodes that were ever edited
    m_riggingTouched = false;
}

bool RyNodeEdit::cancel(const RyNodeRigging &rigging, const RyNodePose &pose)
{
    size_t next = 0;
    // A listener may begin or finish an edit of its own, which replaces the values.
    const auto restore = [&](RyFloatProperty *property) {
        if (next + 1 >= m_values.size())
            return;
        property->setDefaultValue(m_values[next + 1]);
        property->setValue(m_values[next]);
        next += 2;
    };
    m_restoring = true;
    for (RyFloatProperty *property : rigging)
        restore(property);
    for (RyFloatProperty *property : pose)
        restore(property);
    m_restoring = false;
    const bool touched = m_riggingTouched;
    finish();
    return touched;
}

bool RyNodeEdit::noteRiggingChange(int editLevel)
{
    m_riggingTouched = editLevel > 0 || m_restoring;
    return !m_riggingTouched;
}
