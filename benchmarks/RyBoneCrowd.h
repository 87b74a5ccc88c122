#pragma once

#include "pluginsource/RyJointTools/operations/alignNode.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"

#include <cmath>
#include <random>

/// A figure of so many bones for benchmarks that draw: chains of twelve, 6 to 16 cm each, turned and posed, all over a
/// space of 160 cm.
inline RyFigure *makeBoneCrowd(RyScene *scene, int bones)
{
    constexpr int chainLength = 12;
    std::mt19937 random(20240613);
    std::uniform_real_distribution<float> part(0.0f, 1.0f);
    const auto within = [&](float most) { return (2.0f * part(random) - 1.0f) * most; };
    auto *figure = new RyFigure;
    figure->setName(QStringLiteral("crowd"));
    RyNode *parent = figure;
    for (int i = 0; i < bones; ++i) {
        auto *bone = new RyBone;
        bone->setName(QStringLiteral("b%1_").arg(i));
        if (i % chainLength == 0)
            parent = figure;
        const RyVec3 place(within(80), within(80), within(20));
        const RyVec3 start = parent == figure ? place : parent->getEndPoint() + RyVec3(within(2), within(2), within(1));
        RyVec3 way(within(1), within(1), within(0.5f));
        for (int axis = 0; axis < 2; ++axis) {
            if (std::abs(start[axis]) > 80.0f) // chains come back
                way[axis] = std::copysign(way[axis], -start[axis]);
        }
        bone->setRotationOrder(RyRotationOrder(int(random() % 6u)));
        bone->setOrigin(start, true);
        bone->setEndPoint(start + way.normalized() * (6.0f + 10.0f * part(random)), true);
        alignNode(bone);
        bone->setOrientation(bone->getOrientation(), true);
        bone->getXRotControl()->setValue(within(4));
        bone->getZRotControl()->setValue(within(4));
        parent->addNodeChild(bone);
        parent = bone;
    }
    figure->getYRotControl()->setValue(8.0f);
    scene->addNode(figure);
    return figure;
}
