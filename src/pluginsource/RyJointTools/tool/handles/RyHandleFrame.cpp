#include "pluginsource/RyJointTools/tool/handles/RyHandleFrame.h"

#include "rycore/scene/RyNode.h"

#include <cmath>

static RyHandleFrame makeFrame(const RyVec3 &anchor, const RyQuat &axisRotation, const RyMatrix3 &scale,
                               const RyQuat &viewRotation)
{
    RyHandleFrame frame;
    frame.anchor = anchor;
    for (int k = 0; k < 3; ++k) {
        frame.axes[k] = axisRotation.multVec(RyVec3::axis(k));
        frame.lengths[k] = std::copysign(scale.row(k).length(), scale[k][k]);
    }
    frame.planeNormal = viewRotation.multVec(RyVec3::axis(2));
    return frame;
}

static RyMatrix3 worldScale(const RyNode &node)
{
    RyVec3 position;
    RyQuat rotation;
    RyMatrix3 scale;
    node.getWSTransform(position, rotation, scale);
    return scale;
}

RyHandleFrame RyHandleFrame::ofOrigin(const RyNode &node, const RyQuat &viewRotation)
{
    const RyNode *parent = node.getNodeParent();
    return makeFrame(node.getWSPos(), parent ? parent->getWSRot() : RyQuat(), worldScale(node), viewRotation);
}

RyHandleFrame RyHandleFrame::ofEndPoint(const RyNode &node, const RyQuat &viewRotation)
{
    return makeFrame(node.getWSEndPoint(), node.getWSRot(), worldScale(node), viewRotation);
}

RyMatrix4 RyHandleFrame::toWorld() const
{
    RyMatrix3 linear;
    for (int k = 0; k < 3; ++k)
        linear.setRow(k, axes[k] * lengths[k]);
    return RyMatrix4(linear, anchor);
}

RyVec3 RyHandleFrame::wayAlongAxis(int axis, const RyLine3 &ray) const
{
    const RyLine3 line(anchor, anchor + axes[axis]);
    RyVec3 nearest;
    line.minDistanceFromLine(ray, nearest);
    return axes[axis] * (nearest - anchor).dot(axes[axis]);
}

RyVec3 RyHandleFrame::wayInPlane(const RyLine3 &ray) const
{
    RyVec3 hit;
    ray.planeIntersect(anchor, planeNormal, hit);
    return hit - anchor;
}
