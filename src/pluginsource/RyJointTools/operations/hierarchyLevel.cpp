#include "pluginsource/RyJointTools/operations/hierarchyLevel.h"

#include "rycore/scene/RySkeleton.h"

static const RyNode *parentOf(const RyNode *node)
{
    return node ? node->getNodeParent() : nullptr;
}

static bool isSkeleton(const RyNode *node)
{
    return qobject_cast<const RySkeleton *>(node) != nullptr;
}

int boneDepth(const RyNode *node)
{
    int depth = 1;
    for (const RyNode *above = parentOf(node); parentOf(above) && !isSkeleton(above); above = parentOf(above))
        ++depth;
    return depth;
}

bool areAtTheSameLevel(const RyNode *oldParent, const RyNode *newParent)
{
    const RyNode *a = parentOf(oldParent);
    const RyNode *b = parentOf(newParent);
    while (a && b && a != b && !isSkeleton(a) && !isSkeleton(b)) {
        a = parentOf(a);
        b = parentOf(b);
    }
    return a == b;
}
