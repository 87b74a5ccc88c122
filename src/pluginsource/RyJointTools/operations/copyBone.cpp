#include "pluginsource/RyJointTools/operations/copyBone.h"

#include "pluginsource/RyJointTools/operations/bindBone.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"

static RyBone *makeBoneLike(const RyBone *source, const RyVec3 &origin, const RyVec3 &endPoint)
{
    auto *bone = new RyBone;
    bone->setOrigin(origin, true);
    bone->setEndPoint(endPoint, true);
    bone->setRotationOrder(source->getRotationOrder());
    bone->setOrientation(source->getOrientation(), true);
    const RySkeleton *skeleton = source->getSkeleton();
    bone->setName(skeleton->getUniqueBoneName(source->objectName()));
    bone->setLabel(skeleton->getUniqueBoneLabel(source->getLabel()));
    return bone;
}

RyBone *createSiblingBone(RyBone *source)
{
    RySkinBinding *skin = RySkinBinding::findSkinFromNode(source);
    if (!skin)
        return nullptr;
    RyBone *sibling = makeBoneLike(source, source->getOrigin(), source->getEndPoint());
    sibling->setInheritScale(source->inheritsScale());
    ryScene()->addNode(sibling);
    if (RyNode *parent = source->getNodeParent())
        parent->addNodeChild(sibling);
    bindWithHalfOf(skin, sibling, source);
    return sibling;
}

RyBone *splitBone(RyBone *bone)
{
    RySkinBinding *skin = RySkinBinding::findSkinFromNode(bone);
    if (!skin)
        return nullptr;
    const RyVec3 origin = bone->getOrigin();
    const RyVec3 endPoint = bone->getEndPoint();
    const RyVec3 middle = (endPoint - origin) / 2 + origin;
    bone->setEndPoint(middle, true);
    RyBone *outer = makeBoneLike(bone, middle, endPoint);
    outer->setInheritScale(false);
    ryScene()->addNode(outer);
    bone->addNodeChild(outer);
    bindWithHalfOf(skin, outer, bone);
    const std::vector<RyNode *> children = bone->nodeChildrenIterator();
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        if (*child != outer && qobject_cast<RyBone *>(*child))
            outer->addNodeChild(*child);
    }
    return outer;
}
