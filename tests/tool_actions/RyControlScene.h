#pragma once

#include "RySkinnedScene.h"

#include "pluginsource/RyJointTools/operations/normalizeWeights.h"
#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyFloatProperty.h"

/// A figure that has been worked on: moved, turned, scaled and bent, with rest values that are no defaults and face
/// groups of four of its bones. The left thigh bulges and does not take its parent's scale; the right one is not bound.
struct RyControlScene : RySkinnedScene
{
    explicit RyControlScene(Maps maps = Both) : RySkinnedScene(maps)
    {
        pose();
        figure->getScaleControl()->setValue(1.25f);
        hip->getYScaleControl()->setValue(1.3f);
        lThigh->getXScaleControl()->setValue(0.7f);
        lThigh->getScaleControl()->setValue(1.1f);
        hip->setOrigin({2, 101, -3});
        lThigh->setOrigin({12, 93, 4});
        lThigh->setEndPoint({13, 53, -3});
        lThigh->setOrientation(RyQuat(RyVec3(1, 2, -1).normalized(), 0.4f), true);
        lThigh->getOrientYControl()->setValue(33.0f);
        lThigh->setRotationOrder(RyRotationOrder(3));
        lThigh->setInheritScale(false);
        lShin->getOrientZControl()->setValue(-20.0f);
        lFoot->setEndPoint({14, 3, 15});
        lFoot->setLabel(QStringLiteral("Left Foot"));
        figure->setSelectionMap(new RySelectionMap);
        for (RyBone *bone : {lFoot, hip, rThigh, lShin})
            figure->getSelectionMap()->addPair(QStringLiteral("group of ") + bone->getName(), bone, false);
        for (int axis = 0; axis < 3; ++axis)
            binding(lThigh)->setBulgeBinding(axis, new RyBulgeBinding(axis));
        skin->removeBoneBinding(binding(rThigh));
        normalizeWeights(skin);
    }

    RyBone *control(const RyBone *bone) const { return figure->findBone(QStringLiteral("cb_") + bone->getName()); }

    static std::vector<RyFloatProperty *> poseOf(const RyNode *node)
    {
        return {node->getXTransControl(), node->getYTransControl(), node->getZTransControl(), node->getXRotControl(),
                node->getYRotControl(),   node->getZRotControl(),   node->getScaleControl(),  node->getXScaleControl(),
                node->getYScaleControl(), node->getZScaleControl()};
    }
};
