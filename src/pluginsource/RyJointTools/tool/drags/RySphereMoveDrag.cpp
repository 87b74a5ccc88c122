#include "pluginsource/RyJointTools/tool/drags/RySphereMoveDrag.h"

#include "pluginsource/RyJointTools/tool/drags/RyDragContext.h"
#include "pluginsource/RyJointTools/tool/drags/viewAngles.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/parametric/RyLegacyJointSphere.h"

/// The control that moves a sphere along an axis.
static RyFloatProperty &control(const RyLegacyJointSphere &sphere, int axis)
{
    return *sphere.controls()[size_t(axis)];
}

RySphereMoveDrag::RySphereMoveDrag(const RyDragContext &context, Sphere sphere, int axis)
    : RySphereDrag(context, sphere), m_axis(axis), m_frame(RyHandleFrame::ofSphereArrows(space(), start())),
      m_startValue(control(sphereOf(*context.param), axis).getValue())
{
    setPointsAtEye(isAlongView(RyLine3(m_frame.anchor, m_frame.anchor + m_frame.axes[axis]), context.camera));
}

RyVec3 RySphereMoveDrag::dragVector(const RyLine3 &ray) const
{
    return m_frame.wayAlongAxis(m_axis, ray);
}

void RySphereMoveDrag::change(const Options &)
{
    const float way = (currentVector() - pressVector()).dot(m_frame.axes[m_axis]);
    for (const RyLegacyJointParam *side : sides())
        control(sphereOf(*side), m_axis).adjustValue(m_startValue + way);
}
