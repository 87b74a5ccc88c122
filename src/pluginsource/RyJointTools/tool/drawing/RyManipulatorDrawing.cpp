#include "pluginsource/RyJointTools/tool/drawing/RyManipulatorDrawing.h"

#include "pluginsource/RyJointTools/tool/drawing/drawCone.h"
#include "pluginsource/RyJointTools/tool/drawing/glGeometry.h"
#include "pluginsource/RyJointTools/tool/drawing/handleColors.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleFrame.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleTable.h"

#include "rycore/math/RyMatrix4.h"
#include "rycore/scene/RyNode.h"
#include "rycore/viewport/RyGLUtility.h"

#include <GL/gl.h>

#include <algorithm>

static constexpr float handleLength = 5.0f;
static constexpr float ballPixels = 40.0f;
static constexpr float maxBallRadius = 1.5f;
/// No handle goes farther from its anchor along an axis: an arrow with the longest cone.
static constexpr float reach = handleLength + 1.5f;

void RyManipulatorDrawing::draw(const RyNode &node) const
{
    if (!node.getOriginXControl())
        return;
    const RyMatrix4 origin = RyHandleFrame::ofOrigin(node).toWorld();
    const RyMatrix4 endPoint = RyHandleFrame::ofEndPoint(node).toWorld();
    const bool isOriginSeen = isSeen(origin);
    const bool isEndPointSeen = isSeen(endPoint);
    if (!isOriginSeen && !isEndPointSeen)
        return;
    glPushAttrib(GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT | GL_LINE_BIT);
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    glShadeModel(GL_FLAT); // as bones have it
    if (m_context.pickPass)
        capLineWidth();
    if (isOriginSeen)
        drawPoint(RyHandle::Origin, origin);
    if (isEndPointSeen)
        drawPoint(RyHandle::EndPoint, endPoint);
    glPopAttrib();
}

bool RyManipulatorDrawing::isSeen(const RyMatrix4 &toWorld) const
{
    RyVec3 arms[3];
    for (int axis = 0; axis < 3; ++axis)
        arms[axis] = toWorld.multDirMatrix(RyVec3::axis(axis) * reach);
    return m_context.volume.reaches(toWorld.translation(), arms);
}

void RyManipulatorDrawing::drawPoint(RyHandle::Target target, const RyMatrix4 &toWorld) const
{
    if (m_context.display.showManipulators) {
        for (const RyHandle *handle : RyHandleTable::handlesOf(target, RyHandle::AxisArrow))
            drawArrow(toWorld, *handle);
    }
    for (const RyHandle *handle : RyHandleTable::handlesOf(target, RyHandle::Point)) {
        drawCrosshair(toWorld, *handle);
        drawBall(toWorld, *handle);
    }
}

void RyManipulatorDrawing::drawArrow(const RyMatrix4 &toWorld, const RyHandle &handle) const
{
    const RyVec3 tip = RyVec3::axis(handle.axis) * handleLength;
    const RyVec3 worldTip = toWorld.multVecMatrix(tip);
    glBegin(GL_LINES);
    setHandleColor(m_context, handle);
    putVertex(toWorld.translation());
    putVertex(worldTip);
    glEnd();
    drawCone(toWorld, tip, handle.axis, coneSizeAt(m_context.volume, worldTip));
}

void RyManipulatorDrawing::drawCrosshair(const RyMatrix4 &toWorld, const RyHandle &handle) const
{
    glBegin(GL_LINES);
    setHandleColor(m_context, handle);
    for (int axis = 0; axis < 3; ++axis) {
        putVertex(toWorld.multVecMatrix(RyVec3::axis(axis) * -handleLength));
        putVertex(toWorld.multVecMatrix(RyVec3::axis(axis) * handleLength));
    }
    glEnd();
}

void RyManipulatorDrawing::drawBall(const RyMatrix4 &toWorld, const RyHandle &handle) const
{
    const float radius = std::min(m_context.volume.lengthOf(ballPixels, toWorld.translation()) / 12.0f, maxBallRadius);
    glPushMatrix();
    glMultMatrixf(toWorld.data());
    glBegin(GL_TRIANGLES);
    setHandleColor(m_context, handle);
    glEnd();
    RyGLUtility::drawSphere(std::max(m_context.display.sphereLineDensity, 1), radius, false, true);
    glPopMatrix();
}
