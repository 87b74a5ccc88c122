#include "pluginsource/RyJointTools/tool/drags/RyAngleDrag.h"

#include "pluginsource/RyJointTools/tool/drags/viewAngles.h"
#include "pluginsource/RyJointTools/tool/handles/RyParamSpace.h"

#include "rycore/math/RyFastMath.h"
#include "rycore/parametric/RyLegacyBendParam.h"

RyAngleDrag::RyAngleDrag(const RyDragContext &context, int index)
    : RyParamDrag(context), m_index(index), m_axis(context.param->getAxis()),
      m_frame(RyHandleFrame::ofAngles(RyParamSpace::of(*context.param, *context.node))),
      m_references(m_frame.angleReferences(m_axis)), m_setAngle(context.setAngle),
      m_start(static_cast<const RyLegacyBendParam *>(context.param)->angleValues())
{
    setPointsAtEye(isEdgeOn(m_frame.anchor, m_frame.normalAcrossAxis(m_axis), context.camera));
}

RyVec3 RyAngleDrag::dragVector(const RyLine3 &ray) const
{
    return m_frame.wayAcrossAxis(m_axis, ray);
}

void RyAngleDrag::change(const Options &)
{
    if (isNowhere(currentVector())) {
        changeBack();
        return;
    }
    const float angle = m_references.zero.getAngleTo(currentVector());
    const bool isNegative = m_references.quarter.getAngleTo(currentVector()) > 1.5707963f;
    m_setAngle(m_index, isNegative ? -angle : angle, m_start);
}

// The tool's own way comes first: it follows every angle that is written past it.
void RyAngleDrag::changeBack()
{
    m_setAngle(m_index, float(double(m_start[size_t(m_index)]) * RyFastMath::RadiansPerDegree), m_start);
    RyParamDrag::changeBack();
}
