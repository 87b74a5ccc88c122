#include "pluginsource/RyJointTools/tool/drawing/RyZoneDrawing.h"

#include "pluginsource/RyJointTools/tool/drawing/glGeometry.h"
#include "pluginsource/RyJointTools/tool/drawing/handleColors.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleFrame.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleTable.h"
#include "pluginsource/RyJointTools/tool/handles/RyParamSpace.h"

#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/parametric/RyLegacyTwistParam.h"

#include <GL/gl.h>

static const RyHandle &handleOf(RyHandle::Target target, RyHandle::Value value)
{
    const std::vector<const RyHandle *> ends = RyHandleTable::handlesOf(target, RyHandle::Zone);
    return *ends[ends.front()->value == value ? 0 : 1];
}

RyZoneDrawing::RyZoneDrawing(const RyDrawContext &context, const RyParamSpace &space, float radius)
    : m_context(context), m_origin(space.origin), m_toWorld(RyHandleFrame::ofZones(space).toWorld()), m_radius(radius)
{}

void RyZoneDrawing::draw(const RyLegacyTwistParam &param) const
{
    drawZone(RyHandle::TwistZone, param.getAxis(), param.getStart(), param.getEnd());
}

void RyZoneDrawing::draw(const RyLegacySmoothScale &param) const
{
    if (param.hiValid())
        drawZone(RyHandle::HighZone, param.getAxis(), param.getHiStart(), param.getHiEnd());
    if (param.loValid())
        drawZone(RyHandle::LowZone, param.getAxis(), param.getLoStart(), param.getLoEnd());
}

void RyZoneDrawing::drawZone(RyHandle::Target target, int axis, float start, float end) const
{
    const auto endAt = [&](RyHandle::Value value, float coordinate) {
        return End{handleOf(target, value), axis, RyVec3::axis(axis) * (coordinate - m_origin[axis])};
    };
    const End first = endAt(RyHandle::Start, start);
    const End last = endAt(RyHandle::End, end);
    glPushAttrib(GL_DEPTH_BUFFER_BIT | GL_POLYGON_BIT);
    glDepthMask(GL_FALSE);
    glDepthFunc(GL_ALWAYS);
    glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
    drawCross(first);
    if (!m_context.pickPass)
        drawWay(first, last);
    drawCross(last);
    for (const End *each : {&first, &last}) {
        if (target == RyHandle::TwistZone)
            drawRing(*each);
        else
            drawDiamond(*each);
    }
    glPopAttrib();
}

RyVec3 RyZoneDrawing::arm(const End &end, int index) const
{
    const RyVec3 side = RyVec3::axis((end.axis + 1 + index % 2) % 3) * m_radius;
    return m_toWorld.multDirMatrix(index < 2 ? side : -side);
}

bool RyZoneDrawing::isSeen(const End &end) const
{
    return m_context.volume.reaches(m_toWorld.multVecMatrix(end.center), {arm(end, 0), arm(end, 1), RyVec3()});
}

void RyZoneDrawing::drawCross(const End &end) const
{
    if (!isSeen(end))
        return;
    const RyVec3 center = m_toWorld.multVecMatrix(end.center);
    glBegin(GL_LINES);
    setHandleColor(m_context, end.handle);
    for (int line = 0; line < 2; ++line) {
        putVertex(center - arm(end, line));
        putVertex(center + arm(end, line));
    }
    glEnd();
}

void RyZoneDrawing::drawWay(const End &from, const End &to) const
{
    const RyVec3 first = m_toWorld.multVecMatrix(from.center);
    const RyVec3 last = m_toWorld.multVecMatrix(to.center);
    if (!m_context.volume.reachesLine(first, last))
        return;
    glBegin(GL_LINES);
    glColor3ub(255, 255, 255);
    putVertex(first);
    putVertex(last);
    glEnd();
}

void RyZoneDrawing::drawRing(const End &end) const
{
    if (!isSeen(end))
        return;
    glBegin(GL_LINE_LOOP);
    setHandleColor(m_context, end.handle);
    putRing(m_toWorld, end.center, end.axis, m_radius);
    glEnd();
}

void RyZoneDrawing::drawDiamond(const End &end) const
{
    if (!isSeen(end))
        return;
    const RyVec3 center = m_toWorld.multVecMatrix(end.center);
    glBegin(GL_QUADS);
    setHandleColor(m_context, end.handle);
    for (int corner = 0; corner < 4; ++corner)
        putVertex(center + arm(end, corner));
    glEnd();
}
