#include "pluginsource/RyJointTools/tool/drags/RyZoneDrag.h"

#include "pluginsource/RyJointTools/tool/drags/RyDragContext.h"
#include "pluginsource/RyJointTools/tool/drags/viewAngles.h"
#include "pluginsource/RyJointTools/tool/handles/RyParamSpace.h"

#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/parametric/RyLegacyTwistParam.h"

using End = RyZoneDrag::End;

static float get(const RyLegacyJointParam &param, const End &end)
{
    const bool isStart = end.value == RyHandle::Start;
    if (end.zone == RyHandle::TwistZone) {
        const auto &twist = static_cast<const RyLegacyTwistParam &>(param);
        return isStart ? twist.getStart() : twist.getEnd();
    }
    const auto &smooth = static_cast<const RyLegacySmoothScale &>(param);
    if (end.zone == RyHandle::HighZone)
        return isStart ? smooth.getHiStart() : smooth.getHiEnd();
    return isStart ? smooth.getLoStart() : smooth.getLoEnd();
}

static void set(RyLegacyJointParam &param, const End &end, float value)
{
    const bool isStart = end.value == RyHandle::Start;
    if (end.zone == RyHandle::TwistZone) {
        auto &twist = static_cast<RyLegacyTwistParam &>(param);
        isStart ? twist.setStart(value) : twist.setEnd(value);
        return;
    }
    auto &smooth = static_cast<RyLegacySmoothScale &>(param);
    if (end.zone == RyHandle::HighZone)
        isStart ? smooth.setHiStart(value) : smooth.setHiEnd(value);
    else
        isStart ? smooth.setLoStart(value) : smooth.setLoEnd(value);
}

/// The end that the partner gives the same value: one side's high start is the other's low end.
static End onPartner(const End &end)
{
    if (end.zone == RyHandle::TwistZone)
        return end;
    return {end.zone == RyHandle::HighZone ? RyHandle::LowZone : RyHandle::HighZone,
            end.value == RyHandle::Start ? RyHandle::End : RyHandle::Start};
}

RyZoneDrag::RyZoneDrag(const RyDragContext &context, const End &end)
    : RyParamDrag(context), m_end(end), m_axis(context.param->getAxis()),
      m_frame(RyHandleFrame::ofZones(RyParamSpace::of(*context.param, *context.node))),
      m_start(get(*context.param, end))
{
    setPointsAtEye(isAlongView(RyLine3(m_frame.anchor, m_frame.anchor + m_frame.axes[m_axis]), context.camera));
}

RyVec3 RyZoneDrag::dragVector(const RyLine3 &ray) const
{
    return m_frame.wayAlongAxis(m_axis, ray);
}

void RyZoneDrag::change(const Options &)
{
    const float value = m_start + (currentVector() - pressVector()).dot(m_frame.axes[m_axis]);
    set(*param(), m_end, value);
    if (partner())
        set(*partner(), onPartner(m_end), value);
}
