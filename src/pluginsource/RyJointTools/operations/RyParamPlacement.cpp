#include "pluginsource/RyJointTools/operations/RyParamPlacement.h"

#include "pluginsource/RyJointTools/operations/moveParams.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/parametric/RyLegacyJointParam.h"

RyParamPlacement::RyParamPlacement(RyLegacyJointParam &param) : m_param(&param)
{
    for (const RyLegacyJointSphere *sphere : {param.getDynamicSphere(), param.getStaticSphere()}) {
        for (int axis = 0; axis < 3; ++axis) {
            RyFloatProperty *control = sphere->controls()[size_t(axis)];
            m_values.push_back({control, control->getValue(), axis});
        }
    }
    for (RyFloatProperty *end : zoneEnds(param))
        m_values.push_back({end, end->getValue(), param.getAxis()});
}

void RyParamPlacement::move(const RyVec3 &way) const
{
    if (!m_param)
        return;
    for (const Value &value : m_values)
        value.control->adjustValue(value.start + way[value.axis]);
}
