#include "pluginsource/RyJointTools/tool/drags/RyParamDrag.h"

#include "pluginsource/RyJointTools/tool/drags/RyDragContext.h"

RyParamDrag::RyParamDrag(const RyDragContext &context)
    : RyHandleDrag(context.param), m_param(context.param), m_partner(context.partner), m_recorded(m_param),
      m_recordedPartner(m_partner)
{}

std::vector<RyLegacyJointParam *> RyParamDrag::sides() const
{
    std::vector<RyLegacyJointParam *> sides;
    for (RyLegacyJointParam *side : {m_param.data(), m_partner.data()}) {
        if (side)
            sides.push_back(side);
    }
    return sides;
}

void RyParamDrag::apply(const Options &options)
{
    if (!m_param || m_pointsAtEye)
        return;
    if (currentVector() == pressVector())
        changeBack();
    else
        change(options);
}

void RyParamDrag::changeBack()
{
    m_recorded.writeBack();
    m_recordedPartner.writeBack();
}
