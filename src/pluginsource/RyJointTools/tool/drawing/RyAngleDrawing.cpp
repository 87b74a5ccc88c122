#include "pluginsource/RyJointTools/tool/drawing/RyAngleDrawing.h"

#include "pluginsource/RyJointTools/tool/drawing/glGeometry.h"
#include "pluginsource/RyJointTools/tool/drawing/handleColors.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleTable.h"
#include "pluginsource/RyJointTools/tool/handles/RyParamSpace.h"

#include "rycore/math/RyFastMath.h"
#include "rycore/parametric/RyLegacyBendParam.h"

#include <GL/gl.h>

static constexpr float rayLength = 100.0f;
static constexpr float flagTop = 97.0f;
static constexpr float flagBottom = 94.0f;
static constexpr float flagWidth = float(2.0 * RyFastMath::RadiansPerDegree);

/// Flags stand on the upper side of A and C and on the lower side of B and D.
static float flagSide(const RyHandle &handle)
{
    return handle.value == RyHandle::AngleA || handle.value == RyHandle::AngleC ? 1.0f : -1.0f;
}

RyAngleDrawing::RyAngleDrawing(const RyDrawContext &context, const RyParamSpace &space, int axis) : m_context(context)
{
    const RyHandleFrame frame = RyHandleFrame::ofAngles(space);
    m_center = frame.anchor;
    m_references = frame.angleReferences(axis);
}

void RyAngleDrawing::draw(const RyLegacyBendParam &param) const
{
    float angles[4];
    param.getAngles(angles[0], angles[1], angles[2], angles[3]);
    // Static rays lie over dynamic ones.
    for (const RyHandle::ColorRole role : {RyHandle::DynamicColor, RyHandle::StaticColor}) {
        for (const RyHandle *handle : RyHandleTable::handlesOf(RyHandle::BendAngle, RyHandle::AngleRay)) {
            if (handle->color != role)
                continue;
            const float angle = angles[handle->value - RyHandle::AngleA];
            drawRay(*handle, angle, angle + flagSide(*handle) * flagWidth);
        }
    }
}

RyVec3 RyAngleDrawing::placeAt(float angle, float radius) const
{
    float sine, cosine;
    RyFastMath::sinAndCos(angle, sine, cosine);
    return m_center + (m_references.zero * cosine + m_references.quarter * sine) * radius;
}

void RyAngleDrawing::drawRay(const RyHandle &handle, float angle, float flagAngle) const
{
    const RyVec3 tip = placeAt(angle, rayLength);
    const RyVec3 flag[3] = {placeAt(angle, flagTop), placeAt(flagAngle, flagTop), placeAt(angle, flagBottom)};
    glBegin(GL_LINES);
    setHandleColor(m_context, handle);
    putVertex(m_center);
    putVertex(tip);
    glEnd();
    glBegin(GL_TRIANGLES);
    setHandleColor(m_context, handle);
    for (const RyVec3 &corner : flag)
        putVertex(corner);
    glEnd();
}
