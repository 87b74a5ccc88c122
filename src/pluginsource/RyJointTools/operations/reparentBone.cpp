#include "pluginsource/RyJointTools/operations/reparentBone.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"

static const RyNode *parentOf(const RyNode *node)
{
    return node ? node->getNodeParent() : nullptr;
}

static bool isSkeleton(const RyNode *node)
{
    return qobject_cast<const RySkeleton *>(node) != nullptr;
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

bool canHangBelow(const RyBone *bone, const RyNode *newParent)
{
    return !newParent || (newParent != bone && !newParent->isDescendantOf(bone));
}

void reparentBone(RyBone *bone, RyNode *newParent)
{
    if (!bone || !canHangBelow(bone, newParent))
        return;
    const RyRef<RyBone> held(bone); // between its parents nobody else may hold it
    if (RyNode *oldParent = bone->getNodeParent())
        oldParent->removeNodeChild(bone);
    if (newParent)
        newParent->addNodeChild(bone);
}
