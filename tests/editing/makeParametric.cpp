#include "makeParametric.h"

#include "rycore/figure/RyLegacyFigure.h"
#include "rycore/figure/RyLegacyJointMaker.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/restore/RyRestorePoints.h"

#include <QHash>
#include <QtTest/QtTest>

namespace {

/// What is kept of a bone that goes.
struct Kept
{
    QString name, parent, group;
    RyVec3 origin, end;
    RyQuat orientation;
    RyRotationOrder order;
};

std::vector<Kept> bonesOf(const RySkeleton &figure)
{
    std::vector<Kept> bones;
    const RySelectionMap *map = figure.getSelectionMap();
    for (const RyBone *bone : figure.getAllBones()) {
        bones.push_back({bone->getName(), bone->getNodeParent()->getName(),
                         map ? map->findGroupForNode(bone) : QString(), bone->getOrigin(), bone->getEndPoint(),
                         bone->getOrientation(), bone->getRotationOrder()});
    }
    return bones;
}

void place(RyBone *bone, const Kept &as)
{
    bone->setRotationOrder(as.order);
    bone->setOrientation(as.orientation, true);
    bone->setOrigin(as.origin, true);
    bone->setEndPoint(as.end, true);
}

} // namespace

RyLegacyFigure *ryMakeParametric()
{
    const std::vector<RySkeleton *> figures = ryScene()->getSkeletons();
    const std::vector<Kept> kept = figures.empty() ? std::vector<Kept>() : bonesOf(*figures[0]);
    RyNode *prop = kept.empty() ? nullptr : RySkeleton::convertFigureToProp(figures[0], figures[0]->getName());
    RyLegacyFigure *figure = RyLegacyFigure::convertPropToFigure(prop, kept.empty() ? "" : kept[0].name, false);
    if (!figure) {
        QTest::qFail("no parametric figure could be made", __FILE__, __LINE__);
        return nullptr;
    }
    QHash<QString, RyBone *> made{{kept[0].name, figure->getAllBones()[0]}};
    place(made[kept[0].name], kept[0]);
    figure->getSelectionMap()->clearAll();
    for (const Kept &each : kept) {
        RyBone *&bone = made[each.name];
        if (!bone) {
            RyNode *parent = made.value(each.parent, nullptr);
            bone = new RyBone;
            bone->setName(each.name);
            place(bone, each);
            (parent ? parent : figure)->addNodeChild(bone);
            ryScene()->addNode(bone);
            RyLegacyJointMaker(bone, RyLegacyJointMaker::Side::ByDirection).make(bone->getNodeParent(), true);
        }
        if (!each.group.isEmpty())
            figure->getSelectionMap()->addPair(each.group, bone, false);
    }
    ryUndoStack()->clearAll();
    ryRestorePoints()->clear();
    return figure;
}
