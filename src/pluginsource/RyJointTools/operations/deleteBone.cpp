#include "pluginsource/RyJointTools/operations/deleteBone.h"

#include "pluginsource/RyJointTools/operations/findSkinsThatBind.h"
#include "pluginsource/RyJointTools/operations/normalizeWeights.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyLegacyBoneRemoval.h"
#include "rycore/mesh/ryAddWeights.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/node/RyNodeReplacement.h"
#include "rycore/skin/RySkinBinding.h"

#include <algorithm>

static RyBoneBinding *findReceiver(const RySkinBinding *skin, const RyBone *deleted, const RyNode *parent)
{
    const RyNode *node = parent;
    for (; node && !qobject_cast<const RySkeleton *>(node); node = node->getNodeParent()) {
        RyBoneBinding *binding = qobject_cast<const RyBone *>(node) ? skin->findBoneBinding(node) : nullptr;
        if (binding)
            return binding;
    }
    if (!node)
        return nullptr;
    for (const RyNode *child : deleted->nodeChildrenIterator()) {
        RyBoneBinding *binding = qobject_cast<const RyBone *>(child) ? skin->findBoneBinding(child) : nullptr;
        if (binding)
            return binding;
    }
    return nullptr;
}

void mergeWeightMap(const RyWeightMap *source, RyWeightMap *target)
{
    ryAddWeights(source, target);
}

void moveWeightsOfDeletedBone(RySkinBinding *skin, const RyBone *deleted, const RyNode *parent)
{
    RyBoneBinding *binding = skin ? skin->findBoneBinding(deleted) : nullptr;
    if (!binding)
        return;
    if (const RyBoneBinding *receiver = findReceiver(skin, deleted, parent)) {
        mergeWeightMap(binding->getWeights(), receiver->getWeights());
        mergeWeightMap(binding->getScaleWeights(), receiver->getScaleWeights());
        for (int axis = 0; axis < 3; ++axis)
            mergeWeightMap(binding->getLocalWeights(axis), receiver->getLocalWeights(axis));
    }
    skin->removeBoneBinding(binding);
    normalizeWeights(skin);
}

static bool poses(const RyFloatProperty *controller, const RyFloatProperty *controlled)
{
    const std::vector<RyERCLink *> links = controller->getControlledLinks();
    return std::any_of(links.begin(), links.end(),
                       [controlled](const RyERCLink *link) { return link->getControlled() == controlled; });
}

/// The bone of the same skeleton that turns with this one about all axes, null when there is none.
static RyBone *findPosedBone(const RyBone *control)
{
    for (const RyERCLink *link : control->getXRotControl()->getControlledLinks()) {
        auto *bone = qobject_cast<RyBone *>(link->getControlled()->getOwner());
        if (bone && bone->getSkeleton() == control->getSkeleton() &&
            poses(control->getXRotControl(), bone->getXRotControl()) &&
            poses(control->getYRotControl(), bone->getYRotControl()) &&
            poses(control->getZRotControl(), bone->getZRotControl()))
            return bone;
    }
    return nullptr;
}

/// A control bone has the group of the bone that it poses, which would be left with none.
static void giveGroupBack(RySelectionMap *map, const RyBone *control)
{
    const QString group = map->findGroupForNode(control);
    RyBone *bone = group.isEmpty() ? nullptr : findPosedBone(control);
    if (bone && map->findPair(bone) < 0)
        map->addPair(group, bone, true);
}

static void removePairs(RySelectionMap *map, const RyBone *bone)
{
    for (int pair = map->findPair(bone); pair >= 0; pair = map->findPair(bone))
        map->removePair(pair);
}

void deleteBone(RyBone *bone)
{
    if (!bone)
        return;
    const RyRef<RyBone> guard(bone);
    RyNode *parent = bone->getNodeParent();
    const RySkeleton *skeleton = bone->getSkeleton();
    if (RySelectionMap *map = skeleton ? skeleton->getSelectionMap() : nullptr) {
        giveGroupBack(map, bone);
        removePairs(map, bone);
    }
    // Somebody may hold the bone, and what it moved would stay as it was left.
    RyNodeReplacement::cutLinks({bone});
    const std::vector<RySkinBinding *> skins = findSkinsThatBind(bone);
    RyLegacyBoneRemoval removal(bone);
    if (parent)
        parent->removeNodeChild(bone);
    for (RySkinBinding *skin : skins)
        moveWeightsOfDeletedBone(skin, bone, parent);
    removal.removeLegacyJoint();
    for (RyNode *child : bone->nodeChildrenIterator()) {
        const RyRef<RyNode> held(child); // nobody else may hold one that is not in the scene
        bone->removeNodeChild(child);
        if (parent)
            parent->addNodeChild(child);
        removal.rebuildLegacyJoint(child, parent);
    }
    ryScene()->removeNode(bone);
}
