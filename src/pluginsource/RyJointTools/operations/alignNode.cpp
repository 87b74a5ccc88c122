#include "pluginsource/RyJointTools/operations/alignNode.h"

#include "rycore/figure/RyExactRiggingEdit.h"
#include "rycore/math/RyQuat.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"

// Single precision, as the angle it is compared with.
static constexpr float rightAngle = 1.5707963268f;

bool alignNode(RyNode *node)
{
    if (!node)
        return false;
    const int first = node->getRotationOrder()[0];
    const RyQuat current = node->getOrientation();
    const RyVec3 direction = (node->getEndPoint() - node->getOrigin()).normalized();
    RyVec3 axis = RyVec3::axis(first);
    if (direction.getAngleTo(axis) > rightAngle)
        axis[first] = -1.0f;
    RyQuat orientation = direction.getRotationTo(axis);
    orientation.makeClosest(current);
    node->adjustOrientation(orientation);
    return true;
}

bool alignBranch(RyNode *node)
{
    if (!qobject_cast<RyBone *>(node))
        return false;
    bool aligned = alignNode(node);
    for (RyNode *child : node->nodeChildrenIterator())
        aligned |= alignBranch(child);
    return aligned;
}

bool alignAllBones(const RySkeleton &skeleton)
{
    const RyExactRiggingEdit edit;
    bool aligned = false;
    for (RyNode *child : skeleton.nodeChildrenIterator())
        aligned |= alignBranch(child);
    return aligned;
}
