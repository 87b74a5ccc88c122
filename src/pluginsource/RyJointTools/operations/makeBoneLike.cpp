#include "pluginsource/RyJointTools/operations/makeBoneLike.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"

RyBone *makeBoneLike(const RyBone *source, const RyVec3 &origin, const RyVec3 &endPoint)
{
    auto *bone = new RyBone;
    bone->setOrigin(origin, true);
    bone->setEndPoint(endPoint, true);
    bone->setRotationOrder(source->getRotationOrder());
    bone->setOrientation(source->getOrientation(), true);
    bone->copyCarried(*source);
    const RySkeleton *skeleton = source->getSkeleton();
    bone->setName(skeleton->getUniqueBoneName(source->objectName()));
    bone->setLabel(skeleton->getUniqueBoneLabel(source->getLabel()));
    return bone;
}
