#pragma once

#include "RySkinnedScene.h"

#include "rycore/base/RyFloatProperty.h"

/// A skinned figure, and a larger one like it whose bones are elsewhere: both moved, turned, scaled and bent, with
/// current values that are no defaults. The larger one has the same names, but for its left foot, which is called
/// "foot", and two bones more; it has no right thigh.
struct RyTwoFigures : RySkinnedScene
{
    explicit RyTwoFigures(Maps maps = General) : RySkinnedScene(maps)
    {
        pose();
        figure->getScaleControl()->setValue(1.25f);
        lThigh->getXScaleControl()->setValue(0.7f);
        hip->setOrigin({2, 101, -3});
        lShin->getOrientZControl()->setValue(-20.0f);

        other = new RyFigure;
        other->setName(QStringLiteral("giant"));
        other->setLabel(QStringLiteral("The giant"));
        otherHip = makeBone(other, "hip", {1, 170, 4}, {3, 190, 2});
        otherThigh = makeBone(otherHip, "lThigh", {17, 161, 1}, {19, 90, -4});
        otherShin = makeBone(otherThigh, "lShin", {20, 88, -4}, {18, 12, -9});
        makeBone(otherShin, "foot", {18, 11, -9}, {20, 3, 20});
        makeBone(otherHip, "tail", {0, 160, -10}, {0, 150, -60});
        ryScene()->addNode(other);
        other->setOrigin({5, -3, 8}, true);
        other->getXTransControl()->setValue(-70.0f);
        other->getYTransControl()->setValue(12.0f);
        other->getYRotControl()->setValue(-115.0f);
        other->getZRotControl()->setValue(31.0f);
        other->getScaleControl()->setValue(0.6f);
        other->getYScaleControl()->setValue(1.3f);
        otherHip->getYRotControl()->setValue(35.0f);
        otherHip->getXTransControl()->setValue(4.0f);
        otherThigh->setOrientation(RyQuat({1, 2, -1}, 0.8f), true);
        otherThigh->setOrigin({18, 160, 2});
        otherThigh->getXRotControl()->setValue(-50.0f);
        otherThigh->getZScaleControl()->setValue(1.4f);
        otherShin->setRotationOrder(RyRotationOrder(4));
        otherShin->getOrientXControl()->setValue(15.0f);
        otherShin->getZRotControl()->setValue(70.0f);
    }

    RyFigure *other;
    RyBone *otherHip;
    RyBone *otherThigh;
    RyBone *otherShin;
};
