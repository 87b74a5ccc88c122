#include "pluginsource/RyJointTools/operations/snapPoints.h"

#include "rycore/scene/RyBone.h"

bool snapCenterPoint(RyNode *node)
{
    RyNode *parent = node ? node->getNodeParent() : nullptr;
    if (!parent)
        return false;
    node->beginEdit();
    node->setOrigin(parent->getEndPoint(), false);
    node->finishEdit();
    return true;
}

bool snapEndPoint(RyNode *node)
{
    if (!node)
        return false;
    if (node->getNumNodeChildren() == 0)
        return true;
    RyVec3 sum;
    int count = 0;
    for (const RyNode *child : node->nodeChildrenIterator()) {
        if (qobject_cast<const RyBone *>(child)) {
            sum += child->getOrigin();
            ++count;
        }
    }
    node->beginEdit();
    // Without a bone among the children this divides by zero, which is (0,0,0).
    node->adjustEndPoint(sum / float(count));
    node->finishEdit();
    return true;
}
