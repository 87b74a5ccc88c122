#include "pluginsource/RyJointTools/operations/reparentBone.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"

ReparentObstacle findReparentObstacle(const RyBone *bone, const RyNode *newParent)
{
    if (!newParent)
        return ReparentObstacle::None;
    if (newParent == bone || newParent->isDescendantOf(bone))
        return ReparentObstacle::Loop;
    const RySkeleton *skeleton = bone->getSkeleton();
    return skeleton && newParent->getSkeleton() != skeleton ? ReparentObstacle::OtherSkeleton : ReparentObstacle::None;
}

void reparentBone(RyBone *bone, RyNode *newParent)
{
    if (!bone || findReparentObstacle(bone, newParent) != ReparentObstacle::None)
        return;
    const RyRef<RyBone> held(bone); // between its parents nobody else may hold it
    if (RyNode *oldParent = bone->getNodeParent())
        oldParent->removeNodeChild(bone);
    if (newParent)
        newParent->addNodeChild(bone);
}
