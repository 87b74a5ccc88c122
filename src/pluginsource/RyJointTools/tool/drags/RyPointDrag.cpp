#include "pluginsource/RyJointTools/tool/drags/RyPointDrag.h"

#include "pluginsource/RyJointTools/tool/drags/RyDragContext.h"
#include "pluginsource/RyJointTools/tool/drags/bringToPlace.h"
#include "pluginsource/RyJointTools/tool/drags/viewAngles.h"

#include "rycore/figure/RySymmetricEditing.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyRiggingEdit.h"
#include "rycore/scene/RyScene.h"

static RyQuat rotationOf(const RyCamera *camera)
{
    return camera ? camera->getWSRot() : RyQuat();
}

RyPointDrag::RyPointDrag(const RyDragContext &context, Point point, int axis)
    : RyHandleDrag(context.node), m_node(context.node), m_point(point), m_axis(axis),
      m_frame(point == Origin ? RyHandleFrame::ofOrigin(*context.node, rotationOf(context.camera))
                              : RyHandleFrame::ofEndPoint(*context.node, rotationOf(context.camera))),
      m_start(point == Origin ? m_node->getOrigin() : m_node->getEndPoint()),
      m_startOther(point == Origin ? m_node->getEndPoint() : m_node->getOrigin()),
      m_worldToNode(RyAffine(m_node->getWSTransform()).inverse()), m_branch(m_node)
{
    if (axis >= 0)
        m_pointsAtEye = isAlongView(RyLine3(m_frame.anchor, m_frame.anchor + m_frame.axes[axis]), context.camera);
}

RyVec3 RyPointDrag::dragVector(const RyLine3 &ray) const
{
    if (m_pointsAtEye)
        return {};
    return m_axis < 0 ? m_frame.wayInPlane(ray) : m_frame.wayAlongAxis(m_axis, ray);
}

RyVec3 RyPointDrag::propose(const RyVec3 &way, bool keepLength) const
{
    const RyVec3 moved = m_start + m_worldToNode.mapDirection(way);
    return keepLength ? atStartLength(moved) : moved;
}

RyVec3 RyPointDrag::atStartLength(const RyVec3 &moved) const
{
    const RyVec3 direction = (moved - m_startOther).normalized();
    if (direction == RyVec3())
        return moved;
    return m_startOther + direction * (m_start - m_startOther).length();
}

void RyPointDrag::apply(const Options &options)
{
    if (!m_node)
        return;
    const RyVec3 way = currentVector() - pressVector();
    place(propose(way, options.keepLength), options.propagate);
    if (options.isAligned)
        followTurnedPose(m_frame.anchor + way, options);
}

void RyPointDrag::place(const RyVec3 &wanted, bool propagate)
{
    const RyVec3 value = RySymmetricEditing::of(*ryScene()).held(*m_node, wanted);
    if (m_point == Origin) {
        m_node->adjustOrigin(value);
        return;
    }
    m_node->adjustEndPoint(value);
    if (!propagate)
        return;
    const RyRiggingEdit edit;
    m_branch.moveDescendants(wayTo(value));
}

// What hangs below must not go where this node may not, nor when it starts beside the plane that it is put into.
RyVec3 RyPointDrag::wayTo(const RyVec3 &value) const
{
    return RySymmetricEditing::of(*ryScene()).held(*m_node, value - m_start);
}

// A new orientation turns the pose with it, and the point away from the cursor.
void RyPointDrag::followTurnedPose(const RyVec3 &target, const Options &options)
{
    const RyNode *above = m_point == Origin && m_node->getNodeParent() ? m_node->getNodeParent() : m_node.data();
    const auto placeInWorld = [this] { return m_point == Origin ? m_node->getWSPos() : m_node->getWSEndPoint(); };
    const RyVec3 other = m_point == Origin ? m_node->getWSEndPoint() : m_node->getWSPos();
    const RyVec3 goal =
        options.keepLength ? other + (target - other).normalized() * (placeInWorld() - other).length() : target;
    bringToPlace(goal, m_point == Origin ? m_node->getOrigin() : m_node->getEndPoint(), placeInWorld(),
                 RyAffine(above->getWSTransform()), [&](const RyVec3 &value) {
                     place(options.keepLength ? atStartLength(value) : value, options.propagate);
                     return placeInWorld();
                 });
}

bool RyPointDrag::propagateOrigin(RyNode *node, const RyVec3 &newOrigin)
{
    if (m_point != Origin || !isOpen() || node != m_node)
        return false;
    m_branch.followOrigin(wayTo(newOrigin));
    m_branch.moveDescendants(wayTo(newOrigin));
    return true;
}
