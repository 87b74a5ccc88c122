#include "pluginsource/RyJointTools/operations/propagateEdits.h"

#include "pluginsource/RyJointTools/operations/RyBranchPlacement.h"
#include "pluginsource/RyJointTools/operations/moveParams.h"

#include "rycore/scene/RyBone.h"

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

static void rotateParamsAround(const RyNode *node, const RyQuat &turn)
{
    for (RyLegacyJointParam *param : paramsAround(node))
        rotateParam(param, turn);
}

void propagateTranslation(RyNode *node, const RyVec3 &way)
{
    if (!node || way == RyVec3())
        return;
    const RyBranchPlacement branch(node);
    branch.followOrigin(way);
    branch.moveDescendants(way);
}

void propagateTranslation(RyNode *node, int axis, float way, bool recursive, bool withParams)
{
    if (!node || !isAxis(axis) || way == 0.0f)
        return;
    const RyBranchPlacement branch(node, withParams);
    branch.followOrigin(RyVec3::axis(axis) * way);
    if (recursive)
        branch.moveDescendants(RyVec3::axis(axis) * way);
}

void propagateOrientation(RyNode *node, const RyQuat &turn)
{
    if (!node)
        return;
    const RyBindingEdit edit(node);
    for (RyNode *bone : bonesBelow(node)) {
        bone->adjustOrientation(bone->getOrientation() * turn);
        rotateParamsAround(bone, turn);
    }
}

static void rotateChildBones(const RyNode &node, int axis, float angle, bool withParams, const RyVec3 &center)
{
    for (RyNode *child : node.nodeChildrenIterator()) {
        if (qobject_cast<RyBone *>(child))
            propagateChildRotation(child, axis, angle, true, withParams, center);
    }
}

void propagateRotation(RyNode *node, int axis, float angle, bool recursive, bool withParams)
{
    if (!node || !isAxis(axis) || angle == 0.0f)
        return;
    const RyBindingEdit edit(node);
    const RyQuat turn = rightHandedTurn(axis, angle);
    const RyVec3 center = node->getOrigin();
    node->adjustEndPoint(turnAbout(node->getEndPoint(), center, turn));
    node->adjustOrientation(node->getOrientation() * turn);
    if (withParams)
        rotateParamsAround(node, turn);
    if (recursive)
        rotateChildBones(*node, axis, angle, withParams, center);
}

void propagateChildRotation(RyNode *node, int axis, float angle, bool recursive, bool withParams, const RyVec3 &center)
{
    if (!node || !isAxis(axis) || angle == 0.0f)
        return;
    const RyBindingEdit edit(node);
    const RyQuat turn = rightHandedTurn(axis, angle);
    node->adjustOrigin(turnAbout(node->getOrigin(), center, turn));
    node->adjustEndPoint(turnAbout(node->getEndPoint(), center, turn));
    node->adjustOrientation(node->getOrientation() * turn);
    if (withParams)
        rotateParamsAround(node, turn);
    if (recursive)
        rotateChildBones(*node, axis, angle, withParams, center);
}

void propagateScale(RyNode *node, int axis, float factor, bool recursive, bool withParams)
{
    if (!node || !isAxis(axis))
        return;
    const RyBindingEdit edit(node);
    const RyVec3 center = node->getOrigin();
    const auto scale = [&](RyNode *placed) {
        placed->adjustEndPoint(scaleFrom(placed->getEndPoint(), center, axis, factor));
        for (RyLegacyJointParam *param : withParams ? paramsAround(placed) : std::vector<RyLegacyJointParam *>())
            scaleParam(param, center, axis, factor);
    };
    scale(node);
    if (!recursive)
        return;
    for (RyNode *bone : bonesBelow(node)) {
        bone->adjustOrigin(scaleFrom(bone->getOrigin(), center, axis, factor));
        scale(bone);
    }
}
