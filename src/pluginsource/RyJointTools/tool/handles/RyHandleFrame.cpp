#include "pluginsource/RyJointTools/tool/handles/RyHandleFrame.h"

#include "pluginsource/RyJointTools/tool/handles/RyParamSpace.h"

#include "rycore/scene/RyNode.h"

#include <algorithm>

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

/// The anchor and axes of a map that handles are drawn with.
static RyHandleFrame ofMap(const RyMatrix4 &map)
{
    RyHandleFrame frame;
    frame.anchor = map.translation();
    for (int k = 0; k < 3; ++k) {
        const RyVec3 image = map.multDirMatrix(RyVec3::axis(k));
        frame.axes[k] = image.normalized();
        frame.lengths[k] = image.length();
    }
    return frame;
}

RyHandleFrame RyHandleFrame::ofSphere(const RyParamSpace &space, const RyMatrix4 &sphere)
{
    return ofMap(space.sphereToWorld(sphere));
}

RyHandleFrame RyHandleFrame::ofSphereArrows(const RyParamSpace &space, const RyMatrix4 &sphere)
{
    RyHandleFrame frame = ofMap(space.toWorld);
    frame.anchor = ofSphere(space, sphere).anchor;
    const RyMatrix3 radii = sphere.linear();
    const float length = std::min({radii.row(0).length(), radii.row(1).length(), radii.row(2).length()}) / 3.0f;
    for (float &unit : frame.lengths)
        unit *= length;
    return frame;
}

RyHandleFrame RyHandleFrame::ofZones(const RyParamSpace &space)
{
    return ofMap(space.toWorld);
}

RyHandleFrame RyHandleFrame::ofAngles(const RyParamSpace &space)
{
    RyHandleFrame frame;
    frame.anchor = space.toWorld.translation();
    std::copy(std::begin(space.axes), std::end(space.axes), std::begin(frame.axes));
    return frame;
}

RyHandleFrame::AngleReferences RyHandleFrame::angleReferences(int axis) const
{
    switch (axis) {
    case 0:
        return {-axes[2], axes[1]};
    case 1:
        return {axes[0], axes[2]};
    default:
        return {axes[0], axes[1]};
    }
}

RyVec3 RyHandleFrame::diagonal() const
{
    return (axes[0] + axes[1] + axes[2]).normalized();
}

RyMatrix4 RyHandleFrame::toWorld() const
{
    RyMatrix3 linear;
    for (int k = 0; k < 3; ++k)
        linear.setRow(k, axes[k] * lengths[k]);
    return RyMatrix4(linear, anchor);
}

RyVec3 RyHandleFrame::wayAlong(const RyVec3 &direction, const RyLine3 &ray) const
{
    const RyLine3 line(anchor, anchor + direction);
    RyVec3 nearest;
    line.minDistanceFromLine(ray, nearest);
    return direction * (nearest - anchor).dot(direction);
}

RyVec3 RyHandleFrame::wayAcrossAxis(int axis, const RyLine3 &ray) const
{
    RyVec3 hit;
    ray.planeIntersect(anchor, normalAcrossAxis(axis), hit);
    return hit - anchor;
}

RyVec3 RyHandleFrame::wayInPlane(const RyLine3 &ray) const
{
    RyVec3 hit;
    ray.planeIntersect(anchor, planeNormal, hit);
    return hit - anchor;
}
