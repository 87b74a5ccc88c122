#include "pluginsource/RyJointTools/operations/propagateEdits.h"

#include "pluginsource/RyJointTools/operations/RyBranchPlacement.h"

#include "rycore/scene/RyBone.h"

static bool isAxis(int axis)
{
    return axis >= 0 && axis <= 2;
}

// A control value turns right-handed; the rotation that does it has the negative angle.
static RyQuat rightHandedTurn(int axis, float angle)
{
    return RyQuat(RyVec3::axis(axis), -angle);
}

static RyVec3 turnAbout(const RyVec3 &point, const RyVec3 &center, const RyQuat &turn)
{
    return center + turn.multVec(point - center);
}

static RyVec3 scaleFrom(const RyVec3 &point, const RyVec3 &center, int axis, float factor)
{
    RyVec3 scaled = point;
    scaled[axis] = center[axis] + (point[axis] - center[axis]) * factor;
    return scaled;
}

void propagateTranslation(RyNode *node, const RyVec3 &way)
{
    if (!node || way == RyVec3())
        return;
    const RyBranchPlacement branch(node);
    branch.moveEndPoint(way);
    branch.moveDescendants(way);
}

void propagateTranslation(RyNode *node, int axis, float way, bool recursive)
{
    if (!node || !isAxis(axis) || way == 0.0f)
        return;
    const RyBranchPlacement branch(node);
    branch.moveEndPoint(RyVec3::axis(axis) * way);
    if (recursive)
        branch.moveDescendants(RyVec3::axis(axis) * way);
}

void propagateOrientation(RyNode *node, const RyQuat &turn)
{
    if (!node)
        return;
    for (RyNode *bone : bonesBelow(node))
        bone->adjustOrientation(bone->getOrientation() * turn);
}

static void rotateChildBones(const RyNode &node, int axis, float angle, const RyVec3 &center)
{
    for (RyNode *child : node.nodeChildrenIterator()) {
        if (qobject_cast<RyBone *>(child))
            propagateChildRotation(child, axis, angle, true, center);
    }
}

void propagateRotation(RyNode *node, int axis, float angle, bool recursive)
{
    if (!node || !isAxis(axis) || angle == 0.0f)
        return;
    const RyQuat turn = rightHandedTurn(axis, angle);
    const RyVec3 center = node->getOrigin();
    node->adjustEndPoint(turnAbout(node->getEndPoint(), center, turn));
    node->adjustOrientation(node->getOrientation() * turn);
    if (recursive)
        rotateChildBones(*node, axis, angle, center);
}

void propagateChildRotation(RyNode *node, int axis, float angle, bool recursive, const RyVec3 &center)
{
    if (!node || !isAxis(axis) || angle == 0.0f)
        return;
    const RyQuat turn = rightHandedTurn(axis, angle);
    node->adjustOrigin(turnAbout(node->getOrigin(), center, turn));
    node->adjustEndPoint(turnAbout(node->getEndPoint(), center, turn));
    node->adjustOrientation(node->getOrientation() * turn);
    if (recursive)
        rotateChildBones(*node, axis, angle, center);
}

void propagateScale(RyNode *node, int axis, float factor, bool recursive)
{
    if (!node || !isAxis(axis))
        return;
    const RyVec3 center = node->getOrigin();
    node->adjustEndPoint(scaleFrom(node->getEndPoint(), center, axis, factor));
    if (!recursive)
        return;
    for (RyNode *bone : bonesBelow(node)) {
        bone->adjustOrigin(scaleFrom(bone->getOrigin(), center, axis, factor));
        bone->adjustEndPoint(scaleFrom(bone->getEndPoint(), center, axis, factor));
    }
}
