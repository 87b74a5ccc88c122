#include "pluginsource/RyJointTools/tool/drawing/RyBoneDrawing.h"

#include "pluginsource/RyJointTools/tool/drawing/glGeometry.h"
#include "pluginsource/RyJointTools/tool/drawing/handleColors.h"
#include "pluginsource/RyJointTools/tool/drawing/unitCircle.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleId.h"

#include "rycore/scene/RyBone.h"

#include <GL/gl.h>

#include <array>

static constexpr int ringSegments = 30;
static constexpr float bodyAlpha = 0.2f;
static constexpr float currentOutlineAlpha = 1.0f;
static constexpr float outlineAlpha = 0.4f;
static constexpr float linkAlpha = 0.4f;
static constexpr float bodyGrey = 0.1f;
static constexpr int axisColored = 1;

namespace {

struct Waist
{
    explicit Waist(const RyBoneFrame &frame)
    {
        const RyVec3 middle = frame.waistMiddle();
        corners = {middle + frame.sides[0], middle + frame.sides[1], middle - frame.sides[0], middle - frame.sides[1]};
    }
    std::array<RyVec3, 4> corners;
};

} // namespace

RyBoneDrawing::RyBoneDrawing(const RyDrawContext &context) : m_context(context)
{
    for (int axis = 0; axis < 3; ++axis) {
        const bool colored = context.display.boneColoringStyle == axisColored;
        m_axisColors[axis] = colorOf(colored ? axisColor(axis) : QColor(Qt::white));
    }
}

RyBoneDrawing::Color RyBoneDrawing::colorOf(const QColor &color)
{
    return {float(color.redF()), float(color.greenF()), float(color.blueF())};
}

void RyBoneDrawing::setColor(const Color &color, float alpha)
{
    glColor4f(color.red, color.green, color.blue, alpha);
}

bool RyBoneDrawing::isSeen(const RyBoneFrame &frame) const
{
    const RyVec3 half = frame.along * 0.5f;
    return m_context.volume.reaches(frame.origin + half, {half, frame.sides[0], frame.sides[1]});
}

void RyBoneDrawing::draw(const RyBoneFrames &frames) const
{
    if (frames.entries().empty() || (m_context.pickPass && m_context.bones.count() == 0))
        return;
    glPushAttrib(GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT);
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    glShadeModel(GL_FLAT); // each triangle and line has one colour
    if (m_context.pickPass) {
        drawCodes(frames);
    } else {
        drawShapes(frames);
        if (m_context.display.showBoneHierarchy)
            drawLinks(frames);
    }
    glPopAttrib();
}

void RyBoneDrawing::drawCodes(const RyBoneFrames &frames) const
{
    for (const RyBoneFrames::Entry &entry : frames.entries()) {
        if (!isSeen(entry.frame))
            continue;
        const int index = m_context.bones.find(entry.bone);
        if (index < 0)
            continue;
        glBegin(GL_TRIANGLES);
        setPickColor(HandleId::fromBoneIndex(index));
        putBody(entry.frame);
        glEnd();
    }
}

void RyBoneDrawing::drawShapes(const RyBoneFrames &frames) const
{
    const Color current = colorOf(m_context.display.selectedColor);
    const Color other{bodyGrey, bodyGrey, bodyGrey};
    const Color ghost = colorOf(m_context.display.staticColor);
    glColor3ub(255, 255, 255);
    for (size_t i = 0; i < frames.entries().size(); ++i) {
        const RyBoneFrames::Entry &entry = frames.entries()[i];
        const bool isCurrent = entry.bone == m_context.currentNode;
        const float alpha = isCurrent ? currentOutlineAlpha : outlineAlpha;
        drawShape(entry.frame, isCurrent ? current : other, alpha);
        if (!frames.ghosts().empty())
            drawShape(frames.ghosts()[i], ghost, alpha);
    }
}

void RyBoneDrawing::drawShape(const RyBoneFrame &frame, const Color &bodyColor, float alpha) const
{
    if (!isSeen(frame))
        return;
    glBegin(GL_TRIANGLES);
    setColor(bodyColor, bodyAlpha);
    putBody(frame);
    glEnd();
    drawOutline(frame, alpha);
    drawRing(frame, alpha);
}

void RyBoneDrawing::putBody(const RyBoneFrame &frame)
{
    const Waist waist(frame);
    const RyVec3 tip = frame.tip();
    for (size_t i = 0; i < 4; ++i) {
        const RyVec3 &corner = waist.corners[i];
        const RyVec3 &next = waist.corners[(i + 1) % 4];
        putVertex(frame.origin);
        putVertex(next);
        putVertex(corner);
        putVertex(tip);
        putVertex(corner);
        putVertex(next);
    }
}

void RyBoneDrawing::drawOutline(const RyBoneFrame &frame, float alpha) const
{
    const Waist waist(frame);
    const RyVec3 tip = frame.tip();
    glBegin(GL_LINES);
    for (size_t i = 0; i < 4; ++i) {
        setColor(m_axisColors[frame.axes[i % 2 == 0 ? 1 : 2]], alpha);
        putVertex(frame.origin);
        putVertex(waist.corners[i]);
        putVertex(waist.corners[i]);
        putVertex(tip);
    }
    glEnd();
}

void RyBoneDrawing::drawRing(const RyBoneFrame &frame, float alpha) const
{
    const bool inOrder = frame.axes[1] == (frame.axes[0] + 1) % 3;
    const RyVec3 &first = frame.sides[inOrder ? 0 : 1];
    const RyVec3 &second = frame.sides[inOrder ? 1 : 0];
    const RyVec3 middle = frame.waistMiddle();
    glBegin(GL_LINE_LOOP);
    setColor(m_axisColors[frame.axes[0]], alpha);
    for (const RyCirclePoint &point : unitCircle<ringSegments>())
        putVertex(middle + first * point.cosine + second * point.sine);
    glEnd();
}

void RyBoneDrawing::drawLinks(const RyBoneFrames &frames) const
{
    glPushAttrib(GL_LINE_BIT);
    glLineStipple(3, 0xAAAA);
    glEnable(GL_LINE_STIPPLE);
    glBegin(GL_LINES);
    glColor4f(1.0f, 1.0f, 1.0f, linkAlpha);
    for (const RyBoneFrames::Entry &entry : frames.entries()) {
        if (!entry.hasLink || !m_context.volume.reachesLine(entry.frame.origin, entry.parentTip))
            continue;
        putVertex(entry.frame.origin);
        putVertex(entry.parentTip);
    }
    glEnd();
    glDisable(GL_LINE_STIPPLE);
    glPopAttrib();
}
