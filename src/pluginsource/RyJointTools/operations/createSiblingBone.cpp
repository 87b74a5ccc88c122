#include "pluginsource/RyJointTools/operations/createSiblingBone.h"

#include "pluginsource/RyJointTools/operations/bindBone.h"
#include "pluginsource/RyJointTools/operations/makeBoneLike.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/skin/RySkinBinding.h"

/// The values that show, which links may have added to; defaults stay.
static void copyPose(const RyBone *source, const RyBone *target)
{
    for (size_t i = 0; i < source->poseControls().size(); ++i)
        target->poseControls()[i]->setValue(source->poseControls()[i]->getValue());
}

RyBone *createSiblingBone(RyBone *source)
{
    if (!RySkinBinding::findSkinFromNode(source))
        return nullptr;
    RyBone *sibling = makeBoneLike(source, source->getOrigin(), source->getEndPoint());
    sibling->setInheritScale(source->inheritsScale());
    copyPose(source, sibling);
    ryScene()->addNode(sibling);
    if (RyNode *parent = source->getNodeParent())
        parent->addNodeChild(sibling);
    bindWithHalfOf(sibling, source);
    return sibling;
}
