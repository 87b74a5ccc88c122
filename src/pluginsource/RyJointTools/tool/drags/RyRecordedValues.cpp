#include "pluginsource/RyJointTools/tool/drags/RyRecordedValues.h"

#include "rycore/base/RyFloatProperty.h"

RyRecordedValues::RyRecordedValues(RyLegacyJointParam *param) : m_param(param)
{
    if (!param)
        return;
    const auto record = [this](const auto &properties) {
        for (RyFloatProperty *property : properties)
            m_values.emplace_back(property, property->getRawValue());
    };
    record(param->controllers());
    record(param->getDynamicSphere()->controls());
    record(param->getStaticSphere()->controls());
}

void RyRecordedValues::writeBack() const
{
    if (!m_param)
        return;
    m_param->beginEdit();
    for (const auto &[property, raw] : m_values)
        property->setValue(raw);
    m_param->finishEdit();
}
