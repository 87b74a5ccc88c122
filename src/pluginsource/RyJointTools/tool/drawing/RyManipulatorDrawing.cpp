#include "pluginsource/RyJointTools/tool/drawing/RyManipulatorDrawing.h"

#include "pluginsource/RyJointTools/tool/drawing/drawCone.h"
#include "pluginsource/RyJointTools/tool/drawing/glGeometry.h"
#include "pluginsource/RyJointTools/tool/drawing/handleColors.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleFrame.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleTable.h"

#include "rycore/scene/RyNode.h"
#include "rycore/viewport/RyGLUtility.h"

#include <GL/gl.h>

#include <algorithm>

static constexpr float handleLength = 5.0f;
static constexpr float ballPixels = 40.0f;
static constexpr float maxBallRadius = 1.5f;

void RyManipulatorDrawing::draw(const RyNode &node) const
{
    if (!node.getOriginXControl())
        return;
    glPushAttrib(GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT | GL_LINE_BIT);
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    if (m_context.pickPass)
        capLineWidth();
    drawPoint(RyHandle::Origin, RyHandleFrame::ofOrigin(node).toWorld());
    drawPoint(RyHandle::EndPoint, RyHandleFrame::ofEndPoint(node).toWorld());
    glPopAttrib();
}

RyManipulatorDrawing::Sizes RyManipulatorDrawing::measure(const RyMatrix4 &toWorld) const
{
    Sizes sizes;
    const RyVec3 anchor = toWorld.translation();
    sizes.ballRadius = std::min(RyGLUtility::displayToPerspectiveSize(ballPixels, anchor) / 12.0f, maxBallRadius);
    for (int axis = 0; axis < 3; ++axis)
        sizes.cones[axis] = coneSizeAt(toWorld.multVecMatrix(RyVec3::axis(axis) * handleLength));
    return sizes;
}

void RyManipulatorDrawing::drawPoint(RyHandle::Target target, const RyMatrix4 &toWorld) const
{
    // Measured while the modelview matrix is that of the world.
    const Sizes sizes = measure(toWorld);
    const QColor &color = m_context.display.dynamicColor;
    glPushMatrix();
    glMultMatrixf(toWorld.data());
    if (m_context.display.showManipulators) {
        for (const RyHandle &handle : RyHandleTable::handles()) {
            if (handle.target == target && handle.kind == RyHandle::AxisArrow) {
                setHandleColor(m_context, handle.id, color);
                drawArrow(handle.axis, sizes.cones[handle.axis]);
            }
        }
    }
    for (const RyHandle &handle : RyHandleTable::handles()) {
        if (handle.target == target && handle.kind == RyHandle::Point) {
            setHandleColor(m_context, handle.id, color);
            drawCrosshair();
            RyGLUtility::drawSphere(std::max(m_context.display.sphereLineDensity, 1), sizes.ballRadius, false, true);
        }
    }
    glPopMatrix();
}

void RyManipulatorDrawing::drawArrow(int axis, float coneSize) const
{
    const RyVec3 tip = RyVec3::axis(axis) * handleLength;
    glBegin(GL_LINES);
    putVertex(RyVec3());
    putVertex(tip);
    glEnd();
    drawCone(tip, axis, coneSize);
}

void RyManipulatorDrawing::drawCrosshair() const
{
    glBegin(GL_LINES);
    for (int axis = 0; axis < 3; ++axis) {
        putVertex(RyVec3::axis(axis) * -handleLength);
        putVertex(RyVec3::axis(axis) * handleLength);
    }
    glEnd();
}
