#include "pluginsource/RyJointTools/tool/drags/RySphereTurnDrag.h"

#include "pluginsource/RyJointTools/tool/drags/RyDragContext.h"
#include "pluginsource/RyJointTools/tool/drags/viewAngles.h"

// Where the driver is stretched or mirrored, angles in the world are not those that the sphere turns by: they are
// measured in parameter space, where the sphere is turned.
RySphereTurnDrag::RySphereTurnDrag(const RyDragContext &context, Sphere sphere, int axis)
    : RySphereDrag(context, sphere), m_axis(axis), m_frame(RyHandleFrame::ofSphere(space(), start())),
      m_toParamSpace(RyAffine(space().toWorld).inverse())
{
    const RyVec3 across = start().multDirMatrix(RyVec3::axis((axis + 1) % 3));
    // Of the axes that the ring lies in: the third one may have no extent.
    m_ringAxis = across.cross(start().multDirMatrix(RyVec3::axis((axis + 2) % 3))).normalized();
    m_references[0] = across.normalized();
    m_references[1] = m_ringAxis.cross(m_references[0]);
    setPointsAtEye(isEdgeOn(m_frame.anchor, m_frame.normalAcrossAxis(axis), context.camera));
}

RyVec3 RySphereTurnDrag::dragVector(const RyLine3 &ray) const
{
    return m_frame.wayAcrossAxis(m_axis, ray);
}

float RySphereTurnDrag::signedAngle(const RyVec3 &way) const
{
    const RyVec3 direction = m_toParamSpace.mapDirection(way);
    const float angle = direction.getAngleTo(m_references[0]);
    return direction.getAngleTo(m_references[1]) > 1.5707963f ? -angle : angle;
}

void RySphereTurnDrag::change(const Options &options)
{
    if (options.restrictAxes)
        return;
    if (isNowhere(pressVector()) || isNowhere(currentVector())) {
        changeBack();
        return;
    }
    const float turn = signedAngle(currentVector()) - signedAngle(pressVector());
    const RyVec3 center = start().translation();
    RyMatrix4 turned = start();
    turned.translate(-center);
    turned.rotate(RyQuat(m_ringAxis, -turn));
    turned.translate(center);
    setMatrix(turned);
}
