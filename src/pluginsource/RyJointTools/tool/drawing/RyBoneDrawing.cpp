#include "pluginsource/RyJointTools/tool/drawing/RyBoneDrawing.h"

#include "pluginsource/RyJointTools/tool/drawing/glGeometry.h"
#include "pluginsource/RyJointTools/tool/drawing/handleColors.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleId.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/viewport/RyGLUtility.h"

#include <GL/gl.h>

static constexpr int ringSegments = 30;
static constexpr float bodyAlpha = 0.2f;
static constexpr float currentOutlineAlpha = 1.0f;
static constexpr float outlineAlpha = 0.4f;
static constexpr int axisColored = 1;

void RyBoneDrawing::drawIfBone(RyNode *node) const
{
    if (const RyBone *bone = qobject_cast<RyBone *>(node))
        drawBone(*bone);
}

void RyBoneDrawing::drawFamily(RyNode *node) const
{
    if (!qobject_cast<RyBone *>(node))
        return;
    drawIfBone(node);
    drawIfBone(node->getNodeParent());
    for (int i = 0; i < node->getNumNodeChildren(); ++i)
        drawIfBone(node->getNodeChild(i));
}

void RyBoneDrawing::drawBranches(const RyNode *node) const
{
    if (!node)
        return;
    for (int i = 0; i < node->getNumNodeChildren(); ++i) {
        if (const RyBone *bone = qobject_cast<RyBone *>(node->getNodeChild(i))) {
            drawBone(*bone);
            drawBranches(bone);
        }
    }
}

void RyBoneDrawing::drawBone(const RyBone &bone) const
{
    if (!bone.isVisible())
        return;
    const RyVec3 origin = bone.getOrigin();
    const RyVec3 endPoint = bone.getEndPoint();
    const int first = bone.getRotationOrder()[0];
    // Which way along its first axis a bone goes is asked in its own axes: joints of files turn them anywhere. For a
    // bone that is aligned or not turned this is the order of the two coordinates.
    const RyVec3 along = bone.getOrientation().inverse().multVec(endPoint - origin);
    const float sign = along[first] < 0.0f ? -1.0f : 1.0f;

    glPushAttrib(GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT);
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);

    glPushMatrix();
    glMultMatrixf((RyMatrix4(bone.getOrientation()) * bone.getWSTransform()).data());
    drawShape(bone, sign * (endPoint - origin).length(), Look::Bone);
    glPopMatrix();

    if (!m_context.pickPass) {
        if (m_context.display.ghostBones) {
            const float restLength = (bone.getEndPoint(true) - bone.getOrigin(true)).length();
            glPushMatrix();
            glMultMatrixf(
                (RyMatrix4(bone.getOrientation(true)) * bone.getWSTransform(ryScene()->getTime(), true)).data());
            drawShape(bone, sign * restLength, Look::Ghost);
            glPopMatrix();
        }
        if (m_context.display.showBoneHierarchy)
            drawParentLink(bone);
    }
    glPopAttrib();
}

void RyBoneDrawing::drawShape(const RyBone &bone, float length, Look look) const
{
    const bool isCurrent = &bone == m_context.currentNode;
    int axes[3];
    bone.getRotationOrder().getAxisOrder(axes[0], axes[1], axes[2]);
    const float width = length / 10.0f;
    const RyVec3 tip = RyVec3::axis(axes[0]) * length;
    const RyVec3 middle = RyVec3::axis(axes[0]) * width;
    const RyVec3 sideQ = RyVec3::axis(axes[1]) * width;
    const RyVec3 sideR = RyVec3::axis(axes[2]) * width;
    const RyVec3 waist[4] = {middle + sideQ, middle + sideR, middle - sideQ, middle - sideR};

    if (m_context.pickPass) {
        const int index = m_context.bones.find(&bone);
        if (index < 0)
            return;
        setPickColor(HandleId::fromBoneIndex(index));
        drawBody(tip, waist);
        return;
    }
    glColor3ub(255, 255, 255);
    if (look == Look::Ghost)
        setColor(m_context.display.staticColor, bodyAlpha);
    else if (isCurrent)
        setColor(m_context.display.selectedColor, bodyAlpha);
    else
        glColor4f(0.1f, 0.1f, 0.1f, bodyAlpha);
    drawBody(tip, waist);
    drawOutline(tip, waist, axes, width, isCurrent ? currentOutlineAlpha : outlineAlpha);
}

void RyBoneDrawing::drawBody(const RyVec3 &tip, const RyVec3 (&waist)[4]) const
{
    glBegin(GL_TRIANGLES);
    for (int i = 0; i < 4; ++i) {
        const RyVec3 &next = waist[(i + 1) % 4];
        putVertex(RyVec3());
        putVertex(next);
        putVertex(waist[i]);
        putVertex(tip);
        putVertex(waist[i]);
        putVertex(next);
    }
    glEnd();
}

void RyBoneDrawing::drawOutline(const RyVec3 &tip, const RyVec3 (&waist)[4], const int (&axes)[3], float width,
                                float alpha) const
{
    const bool colored = m_context.display.boneColoringStyle == axisColored;
    const auto lineColor = [colored](int axis) { return colored ? axisColor(axis) : QColor(Qt::white); };
    glBegin(GL_LINES);
    for (int i = 0; i < 4; ++i) {
        setColor(lineColor(axes[i % 2 == 0 ? 1 : 2]), alpha);
        putVertex(RyVec3());
        putVertex(waist[i]);
        putVertex(waist[i]);
        putVertex(tip);
    }
    glEnd();
    setColor(lineColor(axes[0]), alpha);
    RyGLUtility::drawCircle(ringSegments, width, axes[0], false, width);
}

void RyBoneDrawing::drawParentLink(const RyBone &bone) const
{
    const RyNode *parent = bone.getNodeParent();
    if (!parent || parent == bone.getSkeleton())
        return;
    glPushAttrib(GL_LINE_BIT);
    glLineStipple(3, 0xAAAA);
    glEnable(GL_LINE_STIPPLE);
    glColor4f(1.0f, 1.0f, 1.0f, 0.4f);
    glBegin(GL_LINES);
    putVertex(bone.getWSPos());
    putVertex(parent->getWSEndPoint());
    glEnd();
    glDisable(GL_LINE_STIPPLE);
    glPopAttrib();
}
