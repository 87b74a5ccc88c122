#include "pluginsource/RyJointTools/tool/drawing/RyManipulatorDrawing.h"

#include "pluginsource/RyJointTools/tool/drawing/drawCone.h"
#include "pluginsource/RyJointTools/tool/drawing/glGeometry.h"
#include "pluginsource/RyJointTools/tool/drawing/handleColors.h"
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
    RyVec3 position;
    RyQuat rotation;
    RyMatrix3 scale;
    node.getWSTransform(position, rotation, scale);
    const RyNode *parent = node.getNodeParent();
    const RyQuat parentRotation = parent ? parent->getWSRot() : RyQuat();
    const RyVec3 wayToEnd = node.getEndPoint() - node.getOrigin();
    const RyMatrix4 scaleMatrix(scale);

    RyMatrix4 originFrame = scaleMatrix;
    originFrame.rotate(parentRotation);
    originFrame.translate(position);
    RyMatrix4 endFrame(true);
    endFrame.translate(wayToEnd);
    endFrame = endFrame * node.getWSTransform();
    // Measured now: sizes refer to the modelview matrix of the world.
    const Sizes originSizes = measure(originFrame);
    const Sizes endSizes = measure(endFrame);

    glPushMatrix();
    glTranslatef(position.x, position.y, position.z);
    rotateBy(parentRotation);
    glPushAttrib(GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT | GL_LINE_BIT);
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    if (m_context.pickPass)
        capLineWidth();

    glPushMatrix();
    glMultMatrixf(scaleMatrix.data());
    drawPoint(RyHandle::Origin, originSizes);
    glPopMatrix();

    // The scale comes first in the node's own frame: it is taken up again after the rotation.
    rotateBy(parentRotation.inverse());
    rotateBy(rotation);
    glMultMatrixf(scaleMatrix.data());
    glTranslatef(wayToEnd.x, wayToEnd.y, wayToEnd.z);
    drawPoint(RyHandle::EndPoint, endSizes);

    glPopAttrib();
    glPopMatrix();
}

RyManipulatorDrawing::Sizes RyManipulatorDrawing::measure(const RyMatrix4 &frame) const
{
    Sizes sizes;
    const RyVec3 center = frame.translation();
    sizes.ballRadius = std::min(RyGLUtility::displayToPerspectiveSize(ballPixels, center) / 12.0f, maxBallRadius);
    for (int axis = 0; axis < 3; ++axis)
        sizes.cones[axis] = coneSizeAt(frame.multVecMatrix(RyVec3::axis(axis) * handleLength));
    return sizes;
}

void RyManipulatorDrawing::drawPoint(RyHandle::Target target, const Sizes &sizes) const
{
    const QColor &color = m_context.display.dynamicColor;
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
