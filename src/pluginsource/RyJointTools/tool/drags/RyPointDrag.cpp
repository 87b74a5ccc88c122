#include "pluginsource/RyJointTools/tool/drags/RyPointDrag.h"

#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyNode.h"

static bool isAlongView(const RyLine3 &line, const RyDragFrame &frame)
{
    const RyCamera *camera = frame.pressViewport ? frame.pressViewport->getCamera() : nullptr;
    if (!camera)
        return false;
    const RyVec3 &place = line.getOrigin();
    return line.isParallelTo(
        RyLine3(camera->isOrthographic() ? place - camera->viewDirection() : camera->getWSPos(), place));
}

RyPointDrag::RyPointDrag(RyNode *node, Point point, int axis, RyDragFrame &frame)
    : RyHandleDrag(node), m_node(node), m_point(point),
      m_anchor(point == Origin ? node->getWSPos() : node->getWSEndPoint()),
      m_planeNormal(frame.pressCameraRotation.multVec(RyVec3::axis(2))),
      m_start(point == Origin ? node->getOrigin() : node->getEndPoint()),
      m_startOther(point == Origin ? node->getEndPoint() : node->getOrigin()),
      m_worldToNode(RyAffine(node->getWSTransform()).inverse()), m_branch(node)
{
    const RyNode *axisNode = point == Origin ? node->getNodeParent() : node;
    const RyQuat axisRotation = axisNode ? axisNode->getWSRot() : RyQuat();
    frame.jointCenter = node->getWSPos();
    for (int k = 0; k < 3; ++k)
        frame.axes[k] = axisRotation.multVec(RyVec3::axis(k));
    if (axis >= 0)
        m_axis = frame.axes[axis];
    m_pointsAtEye = isAlongView(RyLine3(m_anchor, m_anchor + m_axis), frame);
}

RyVec3 RyPointDrag::dragVector(const RyLine3 &ray) const
{
    if (m_axis == RyVec3()) {
        RyVec3 hit;
        ray.planeIntersect(m_anchor, m_planeNormal, hit);
        return hit - m_anchor;
    }
    if (m_pointsAtEye)
        return {};
    const RyLine3 line(m_anchor, m_anchor + m_axis);
    RyVec3 nearest;
    line.minDistanceFromLine(ray, nearest);
    return m_axis * (nearest - m_anchor).dot(m_axis);
}

RyVec3 RyPointDrag::propose(const RyVec3 &way, bool keepLength) const
{
    const RyVec3 moved = m_start + m_worldToNode.mapDirection(way);
    if (!keepLength)
        return moved;
    const RyVec3 direction = (moved - m_startOther).normalized();
    if (direction == RyVec3())
        return moved;
    return m_startOther + direction * (m_start - m_startOther).length();
}

void RyPointDrag::apply(const RyVec3 &pressVector, const RyVec3 &currentVector, const Options &options)
{
    if (!m_node)
        return;
    const RyVec3 value = propose(currentVector - pressVector, options.keepLength);
    if (m_point == Origin) {
        m_node->adjustOrigin(value);
        return;
    }
    m_node->adjustEndPoint(value);
    if (options.propagate)
        m_branch.moveDescendants(value - m_start);
}

bool RyPointDrag::propagateOrigin(RyNode *node, const RyVec3 &newOrigin)
{
    if (m_point != Origin || !isOpen() || node != m_node)
        return false;
    m_branch.moveEndPoint(newOrigin - m_start);
    m_branch.moveDescendants(newOrigin - m_start);
    return true;
}
