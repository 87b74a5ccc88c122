#include "pluginsource/RyJointTools/operations/createChildBone.h"

#include "pluginsource/RyJointTools/operations/bindBone.h"
#include "pluginsource/RyJointTools/operations/createLegacyJoint.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"

RyBone *createChildBone(RyNode *parent, const QString &name, const QString &label, const RyRotationOrder &order)
{
    if (!parent)
        return nullptr;
    auto *bone = new RyBone;
    bone->setLabel(label);
    bone->setName(name);
    bone->setRotationOrder(order);
    const RyVec3 start = parent->getEndPoint();
    RyVec3 end = start;
    end[order[0]] += (start - parent->getOrigin()).length();
    bone->setOrigin(start, true);
    bone->setEndPoint(end, true);
    bone->setInheritScale(qobject_cast<RySkeleton *>(parent) != nullptr);
    ryScene()->addNode(bone);
    parent->addNodeChild(bone);
    if (RySkinBinding::findSkinFromNode(parent))
        addEmptyBoneBinding(bone, parent);
    else
        createLegacyJoint(bone, parent, true, false);
    return bone;
}
