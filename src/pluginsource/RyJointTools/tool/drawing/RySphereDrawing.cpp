#include "pluginsource/RyJointTools/tool/drawing/RySphereDrawing.h"

#include "pluginsource/RyJointTools/tool/drawing/drawCone.h"
#include "pluginsource/RyJointTools/tool/drawing/drawCube.h"
#include "pluginsource/RyJointTools/tool/drawing/glGeometry.h"
#include "pluginsource/RyJointTools/tool/drawing/handleColors.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleTable.h"
#include "pluginsource/RyJointTools/tool/handles/RyParamSpace.h"

#include "rycore/viewport/RyGLUtility.h"

#include <GL/gl.h>

#include <algorithm>

/// Rings stand a little off the body.
static constexpr float ringRadius = 1.01f;
static constexpr float bodyRadius = 1.0f;

namespace {

enum BodyStyle { RingsOnly = 0, Wireframe = 1, Solid = 2 };
enum CubeStyle { CubeLines = 0, CubeSolid = 1 };

} // namespace

RySphereDrawing::RySphereDrawing(const RyDrawContext &context, RyHandle::Target target, const RyParamSpace &space,
                                 const RyMatrix4 &matrix)
    : m_context(context), m_target(target), m_frame(RyHandleFrame::ofSphere(space, matrix)),
      m_arrows(RyHandleFrame::ofSphereArrows(space, matrix)),
      m_spaceToWorld(RyHandleFrame::ofZones(space).toWorld().linear())
{}

bool RySphereDrawing::isSeen() const
{
    RyVec3 arms[3];
    for (int axis = 0; axis < 3; ++axis)
        arms[axis] = m_frame.axes[axis] * (m_frame.lengths[axis] * ringRadius);
    return m_context.volume.reaches(m_frame.anchor, arms);
}

void RySphereDrawing::drawRings() const
{
    if (!isSeen())
        return;
    const RyMatrix4 toWorld = m_frame.toWorld();
    for (const RyHandle *handle : RyHandleTable::handlesOf(m_target, RyHandle::Ring)) {
        glBegin(GL_LINE_LOOP);
        setHandleColor(m_context, *handle);
        putRing(toWorld, RyVec3(), handle->axis, ringRadius);
        glEnd();
    }
}

void RySphereDrawing::drawBody() const
{
    const int style = m_context.display.sphereDrawing;
    if (m_context.pickPass || (style != Wireframe && style != Solid) || !isSeen())
        return;
    glPushAttrib(GL_DEPTH_BUFFER_BIT | GL_POLYGON_BIT);
    glDepthMask(GL_FALSE); // what lies behind or within is seen through it, whatever is drawn first
    if (style == Solid)
        glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glPushMatrix();
    glMultMatrixf(m_frame.toWorld().data());
    const RyHandle::ColorRole role =
        m_target == RyHandle::StaticSphere ? RyHandle::StaticColor : RyHandle::DynamicColor;
    const QColor color = restingColor(m_context, role);
    const float alpha = float(m_context.display.sphereOpacity) / 255.0f;
    glBegin(GL_LINES); // for setHandleColor's reason
    glColor4f(float(color.redF()), float(color.greenF()), float(color.blueF()), alpha);
    glEnd();
    RyGLUtility::drawSphere(std::max(m_context.display.sphereLineDensity, 1), bodyRadius, false, style == Solid);
    glPopMatrix();
    glPopAttrib();
}

void RySphereDrawing::drawHandles() const
{
    drawCubes(RyHandle::ScaleCube);
    for (const RyHandle *handle : RyHandleTable::handlesOf(m_target, RyHandle::AxisArrow))
        drawArrow(*handle);
    drawCubes(RyHandle::GeneralCube);
}

void RySphereDrawing::drawCubes(RyHandle::Kind kind) const
{
    std::vector<const RyHandle *> cubes = RyHandleTable::handlesOf(m_target, kind);
    // Both cubes of an axis, then those of the next one.
    std::stable_sort(cubes.begin(), cubes.end(),
                     [](const RyHandle *a, const RyHandle *b) { return a->axis < b->axis; });
    const int style = m_context.display.handleDrawing;
    glPushAttrib(GL_POLYGON_BIT);
    if (style == CubeLines || style == CubeSolid)
        glPolygonMode(GL_FRONT_AND_BACK, style == CubeLines ? GL_LINE : GL_FILL);
    for (const RyHandle *handle : cubes)
        drawCube(*handle);
    glPopAttrib();
}

RyVec3 RySphereDrawing::placeOfCube(const RyHandle &handle) const
{
    if (handle.axis < 0)
        return m_frame.anchor;
    const RyVec3 arm = m_frame.axes[handle.axis] * m_frame.lengths[handle.axis];
    return handle.value == RyHandle::Minus ? m_frame.anchor - arm : m_frame.anchor + arm;
}

void RySphereDrawing::drawCube(const RyHandle &handle) const
{
    const RyVec3 place = placeOfCube(handle);
    const float halfSize = cubeSizeAt(m_context.volume, place);
    if (!isSeen(place, halfSize))
        return;
    glBegin(GL_QUADS);
    setHandleColor(m_context, handle);
    putCube(RyMatrix4(m_spaceToWorld, place), halfSize);
    glEnd();
}

void RySphereDrawing::drawArrow(const RyHandle &handle) const
{
    const RyVec3 &center = m_arrows.anchor;
    const RyVec3 tip = center + m_arrows.axes[handle.axis] * m_arrows.lengths[handle.axis];
    const float coneSize = coneSizeAt(m_context.volume, tip);
    if (!m_context.volume.reachesLine(center, tip) && !isSeen(tip, coneSize))
        return;
    glBegin(GL_LINES);
    setHandleColor(m_context, handle);
    putVertex(center);
    putVertex(tip);
    glEnd();
    drawCone(RyMatrix4(m_spaceToWorld, tip), RyVec3(), handle.axis, coneSize);
}

bool RySphereDrawing::isSeen(const RyVec3 &place, float halfSize) const
{
    const RyVec3 half[3] = {m_spaceToWorld.row(0) * halfSize, m_spaceToWorld.row(1) * halfSize,
                            m_spaceToWorld.row(2) * halfSize};
    return m_context.volume.reaches(place, half);
}
