#include "pluginsource/RyJointTools/operations/splitBone.h"

#include "pluginsource/RyJointTools/operations/bindBone.h"
#include "pluginsource/RyJointTools/operations/makeBoneLike.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/skin/RySkinBinding.h"

RyBone *splitBone(RyBone *bone)
{
    if (!RySkinBinding::findSkinFromNode(bone))
        return nullptr;
    const RyVec3 origin = bone->getOrigin();
    const RyVec3 endPoint = bone->getEndPoint();
    const RyVec3 middle = (endPoint - origin) / 2 + origin;
    bone->setEndPoint(middle, true);
    RyBone *outer = makeBoneLike(bone, middle, endPoint);
    outer->setInheritScale(false);
    ryScene()->addNode(outer);
    bone->addNodeChild(outer);
    bindWithHalfOf(outer, bone);
    const std::vector<RyNode *> children = bone->nodeChildrenIterator();
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        if (*child != outer && qobject_cast<RyBone *>(*child))
            outer->addNodeChild(*child);
    }
    return outer;
}
