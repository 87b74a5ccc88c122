#pragma once

#include "RyGroupedScene.h"
#include "RyPaneScene.h"
#include "support/RyMapOf.h"

#include "rycore/skin/RySkinBinding.h"

/// The pane beside all that it can show: a weight-mapped figure, posed and scaled, whose bones bulge about one axis,
/// about two, or not; a parametric one; one without skin, shape or joints; and a prop.
struct RyMixedPaneScene : RyPaneScene
{
    RyMixedPaneScene() : skin(new RySkinBinding), stick(new RyFigure)
    {
        RyGroupedScene::giveGroups(figure, hip, lThigh);
        int vertex = 0;
        for (RyBone *bone : figure->getAllBones()) {
            auto *binding = new RyBoneBinding;
            binding->setBone(bone);
            std::vector<quint16> weights(6, 0);
            weights[size_t(vertex++)] = RyWeightMap::FullWeight;
            binding->setWeights(ryMapOf(weights, bone->getName()));
            skin->addBoneBinding(binding);
        }
        skin->findBoneBinding(lThigh)->setBulgeBinding(2, makeBulge(2, "outside", "inside"));
        skin->findBoneBinding(lThigh)->setBulgeBinding(0, makeBulge(0, nullptr, "calf"));
        skin->findBoneBinding(hip)->setBulgeBinding(1, makeBulge(1, "belly", nullptr));
        figure->getObject()->addModifier(skin);
        pose();
        figure->getScaleControl()->setValue(1.25f);
        lShin->setEndPoint({12, 9, 5});

        stick->setName(QStringLiteral("stick"));
        RyBone *low = makeBone(stick, "low", {0, 0, 40}, {0, 30, 42});
        low->setRotationOrder(RyRotationOrder(4));
        makeBone(low, "high", {0, 30, 42}, {5, 60, 41})->getZRotControl()->setValue(20.0f);
        stick->getXRotControl()->setValue(-35.0f);
        ryScene()->addNode(stick);
        pane->resize(350, 1000);
        select(lThigh);
        ryUndoStack()->clearAll();
    }
    static RyBulgeBinding *makeBulge(int axis, const char *left, const char *right)
    {
        auto *bulge = new RyBulgeBinding(axis);
        if (left)
            bulge->setLeftWeights(ryMapOf({1, 2, 3, 4, 5, 6}, QString::fromLatin1(left)));
        if (right)
            bulge->setRightWeights(ryMapOf({6, 5, 4, 3, 2, 1}, QString::fromLatin1(right)));
        bulge->adjustBulgeValues(0.25f, -0.5f, 0.75f, 1.5f);
        return bulge;
    }

    RySkinBinding *skin; // of the weight-mapped figure
    RyFigure *stick;     // without skin, shape and joints
};
