#include "support/RyTest.h"

#include "RyMessageBoxes.h"
#include "RySkinnedScene.h"

#include "pluginsource/RyJointTools/operations/bindBone.h"
#include "pluginsource/RyJointTools/operations/createSiblingBone.h"
#include "pluginsource/RyJointTools/operations/splitBone.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJECreationActions.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/checkUndo.h"

#include <QSignalSpy>
#include <QStatusBar>

/// Sibling bones and split bones.
class RySiblingAndSplitTest : public QObject
{
    Q_OBJECT

private slots:
    void siblingTakesOverEverything();
    void siblingSharesTheWeights_data();
    void siblingSharesTheWeights();
    void siblingOfAPosedBone_data();
    void siblingOfAPosedBone();
    void siblingOrder();
    void siblingOfAnUnboundBone();
    void nothingToCopy_data();
    void nothingToCopy();
    void copiesOnlyTheMapsThatAreThere();
    void sharedMapIsHalvedOnce();
    void splitPlaces();
    void splitMovesBoneChildrenInReverse();
    void splitMovesNoVertex_data();
    void splitMovesNoVertex();
    void splitOfAScaledBone();
    void splitOfABoneWithoutLength();
    void splitManyTimes();
    void actionsLeaveUndoAndSelectionAlone();
    void actionsJoinAnOpenHold();
    void enabling();
};

void RySiblingAndSplitTest::siblingTakesOverEverything()
{
    RySkinnedScene scene;
    RyBone *source = scene.lShin;
    source->setLabel(QStringLiteral("Left Shin (3)"));
    source->setRotationOrder(RyRotationOrder(4));
    source->setOrigin({1, 2, 3}); // current values count, not those at rest
    source->setEndPoint({4, 5, 6});
    source->setOrientation(RyQuat(RyVec3(0, 1, 0), 0.4f));
    source->setInheritScale(false);
    source->getXRotControl()->setValue(20);
    ryScene()->setSelection({source});
    RyJECreateSiblingBoneAction().executeAction();

    QCOMPARE(scene.lThigh->getNumNodeChildren(), 2);
    const auto *sibling = qobject_cast<RyBone *>(scene.lThigh->getNodeChild(1));
    QVERIFY(sibling);
    QCOMPARE(sibling->getScene(), ryScene());
    QCOMPARE(sibling->getName(), QStringLiteral("lShin2"));
    QCOMPARE(sibling->getLabel(), QStringLiteral("Left Shin 2"));
    QCOMPARE(sibling->getRotationOrder().order(), 4);
    QVERIFY(!sibling->inheritsScale());
    QCOMPARE(sibling->getXRotControl()->getValue(), 20.0f);
    for (bool byDefault : {false, true}) {
        QCOMPARE(sibling->getOrigin(byDefault), RyVec3(1, 2, 3));
        QCOMPARE(sibling->getEndPoint(byDefault), RyVec3(4, 5, 6));
        const RyVec3 axis = sibling->getOrientation(byDefault).multVec(RyVec3(1, 0, 0));
        QVERIFY((axis - source->getOrientation().multVec(RyVec3(1, 0, 0))).length() < 1e-5f);
    }
    QCOMPARE(source->getOrigin(true), RyVec3(11, 50, 2));
    QCOMPARE(ryFaultsOf(scene.figure), QString());
}

void RySiblingAndSplitTest::siblingSharesTheWeights_data()
{
    QTest::addColumn<int>("maps");
    QTest::newRow("general") << int(RySkinnedScene::General);
    QTest::newRow("local") << int(RySkinnedScene::Local);
    QTest::newRow("both") << int(RySkinnedScene::Both);
}

void RySiblingAndSplitTest::siblingSharesTheWeights()
{
    QFETCH(int, maps);
    RySkinnedScene scene{RySkinnedScene::Maps(maps)};
    const auto allMaps = [](const RyBoneBinding *binding) {
        std::vector<std::vector<int>> weights;
        for (const RyWeightMap *map : binding->getAllWeightMaps())
            weights.push_back(ryWeightsOf(map));
        return weights;
    };
    const auto before = allMaps(scene.binding(scene.lFoot));
    RyBone *sibling = createSiblingBone(scene.lFoot);
    QVERIFY(sibling);
    QCOMPARE(scene.skin->getNumBoneBindings(), 6);
    QCOMPARE(scene.skin->bindings().back()->getBone(), sibling);
    QCOMPARE(scene.skin->bindings().back()->getName(), QStringLiteral("lFoot2"));
    const auto first = allMaps(scene.binding(scene.lFoot));
    const auto second = allMaps(scene.binding(sibling));
    QCOMPARE(first.size(), maps == RySkinnedScene::General ? size_t(1)
                           : maps == RySkinnedScene::Local ? size_t(4)
                                                           : size_t(5));
    QCOMPARE(second.size(), first.size());
    for (size_t kind = 0; kind < before.size(); ++kind) {
        for (size_t v = 0; v < before[kind].size(); ++v) {
            // Together what the one had, so that other bones keep their share.
            QCOMPARE(first[kind][v] + second[kind][v], before[kind][v]);
            QVERIFY(first[kind][v] == second[kind][v] || first[kind][v] == second[kind][v] + 1);
        }
    }
    QCOMPARE(ryFaultsOf(scene.figure), QString());
}

void RySiblingAndSplitTest::siblingOfAPosedBone_data()
{
    siblingSharesTheWeights_data();
}

void RySiblingAndSplitTest::siblingOfAPosedBone()
{
    QFETCH(int, maps);
    RySkinnedScene scene{RySkinnedScene::Maps(maps)};
    scene.pose();
    for (RyBone *bone : {scene.hip, scene.lThigh, scene.lFoot}) {
        bone->getXTransControl()->setValue(3);
        bone->getYRotControl()->setValue(-25);
        bone->getScaleControl()->setValue(1.25f);
        bone->getZScaleControl()->setValue(0.8f);
        bone->getZRotControl()->setMin(-10);
        bone->getZRotControl()->setMax(10);
        bone->getZRotControl()->setIsClamped(true);
        const std::vector<RyVec3> before = scene.shown();
        const RyBone *sibling = createSiblingBone(bone);
        QVERIFY(sibling);
        QVERIFY(ryLargestWay(scene.shown(), before) < 1e-3f);
        // It does move vertices: the check above is not one of a bone without weights.
        sibling->getXRotControl()->setValue(sibling->getXRotControl()->getValue() + 30);
        QVERIFY(ryLargestWay(scene.shown(), before) > 1.0f);
        sibling->getXRotControl()->setValue(bone->getXRotControl()->getValue());
        // Limits stay the bone's own.
        QVERIFY(!sibling->getZRotControl()->isClamped());
        const RyRef<RyBone> fresh(new RyBone);
        QCOMPARE(sibling->getZRotControl()->getMax(), fresh->getZRotControl()->getMax());
        QCOMPARE(sibling->getXTransControl()->getDefaultValue(), 0.0f);
    }
}

void RySiblingAndSplitTest::siblingOrder()
{
    RySkinnedScene scene;
    QStringList calls;
    QObject listener;
    connect(ryScene(), &RyScene::nodeAdded, &listener,
            [&](RyNode *node) { calls.append(node->getName() + (node->getNodeParent() ? " added below" : " added")); });
    connect(scene.lThigh, &RyNode::childrenChanged, &listener, [&] { calls.append("child"); });
    connect(scene.skin, &RySkinBinding::skinChanged, &listener, [&] {
        if (calls.last() != "skin")
            calls.append("skin");
    });
    createSiblingBone(scene.lShin);
    QCOMPARE(calls, QStringList({"lShin2 added", "child", "skin"}));
}

void RySiblingAndSplitTest::siblingOfAnUnboundBone()
{
    RySkinnedScene scene;
    scene.skin->removeBoneBinding(scene.binding(scene.lFoot));
    scene.skin->normalize(0, RySkinBinding::AllWeights, false);
    const std::vector<RyBoneBinding *> before = scene.skin->bindings();
    RyBone *sibling = createSiblingBone(scene.lFoot);
    QVERIFY(sibling);
    QVERIFY(!scene.binding(sibling));
    QCOMPARE(scene.skin->bindings(), before);
    RyBone *outer = splitBone(scene.lFoot);
    QVERIFY(outer);
    QCOMPARE(scene.skin->bindings(), before);
    QCOMPARE(ryFaultsOf(scene.figure), QString());
}

void RySiblingAndSplitTest::nothingToCopy_data()
{
    QTest::addColumn<QString>("selected");
    QTest::newRow("nothing") << "";
    QTest::newRow("the figure") << "figure";
    QTest::newRow("a prop") << "prop";
    QTest::newRow("a bone without skin") << "bare";
    QTest::newRow("a bone without skeleton") << "loose";
}

void RySiblingAndSplitTest::nothingToCopy()
{
    QFETCH(QString, selected);
    RySkinnedScene scene;
    auto *bareFigure = new RyFigure;
    bareFigure->setName(QStringLiteral("other"));
    ryScene()->addNode(bareFigure);
    RyToolScene::makeBone(bareFigure, "bare", {}, {0, 1, 0});
    auto *loose = new RyBone;
    loose->setName(QStringLiteral("loose"));
    ryScene()->addNode(loose);
    if (!selected.isEmpty())
        ryScene()->setSelection({ryScene()->findNode(selected)});
    RyMessageBoxes boxes;
    const QString before = scene.dump();
    // They do nothing, but say what they would need.
    const QString hint = QStringLiteral("Nothing done: select a bone of a figure that has a skin.");
    RyJECreateSiblingBoneAction().executeAction();
    QCOMPARE(scene.window->statusBar()->currentMessage(), hint);
    scene.window->statusBar()->clearMessage();
    RyJESplitBoneAction().executeAction();
    QCOMPARE(scene.window->statusBar()->currentMessage(), hint);
    QCoreApplication::processEvents();
    QCOMPARE(boxes.facts, QStringList());
    QCOMPARE(scene.dump(), before);
    QVERIFY(!createSiblingBone(nullptr));
    QVERIFY(!splitBone(nullptr));
    QVERIFY(!copyBoneBinding(nullptr, scene.hip, scene.hip));
    QVERIFY(!copyBoneBinding(scene.skin, nullptr, scene.hip));
    QVERIFY(!copyBoneBinding(scene.skin, scene.hip, nullptr));
    QVERIFY(!addEmptyBoneBinding(nullptr, scene.hip));
    QVERIFY(!addEmptyBoneBinding(scene.hip, nullptr));
    QVERIFY(!addEmptyBoneBinding(scene.hip, scene.prop));
    QCOMPARE(scene.dump(), before);
}

void RySiblingAndSplitTest::copiesOnlyTheMapsThatAreThere()
{
    RySkinnedScene scene(RySkinnedScene::General, 3);
    while (scene.skin->getNumBoneBindings() > 0)
        scene.skin->removeBoneBinding(scene.skin->bindings().back());
    auto *binding = new RyBoneBinding;
    binding->setBone(scene.hip);
    binding->setLocalWeights(ryMapOf({65535, 0, 65535}), 1);
    binding->setScaleWeights(ryMapOf({0, 0, 65535}));
    scene.skin->addBoneBinding(binding);
    const RyBoneBinding *copy = copyBoneBinding(scene.skin, scene.lFoot, scene.hip);
    QVERIFY(copy);
    QCOMPARE(copy->getBone(), scene.lFoot);
    QVERIFY(!copy->getWeights());
    QVERIFY(!copy->getLocalWeights(0));
    QVERIFY(!copy->getLocalWeights(2));
    QVERIFY(copy->getLocalWeights(1) != binding->getLocalWeights(1));
    QCOMPARE(ryWeightsOf(copy->getLocalWeights(1)), std::vector<int>({65535, 0, 65535}));
    QCOMPARE(ryWeightsOf(copy->getScaleWeights()), std::vector<int>({0, 0, 65535}));
    QCOMPARE(ryWeightsOf(binding->getLocalWeights(1)), std::vector<int>({65535, 0, 65535}));
    // With half each; what cannot be halved stays with the first.
    scene.skin->removeBoneBinding(binding);
    const RyBoneBinding *half = bindWithHalfOf(scene.skin, scene.lShin, scene.lFoot);
    QVERIFY(half);
    QVERIFY(!half->getWeights() && !half->getLocalWeights(0));
    QCOMPARE(ryWeightsOf(copy->getLocalWeights(1)), std::vector<int>({32768, 0, 32768}));
    QCOMPARE(ryWeightsOf(half->getLocalWeights(1)), std::vector<int>({32767, 0, 32767}));
}

void RySiblingAndSplitTest::sharedMapIsHalvedOnce()
{
    RySkinnedScene scene(RySkinnedScene::Local, 2);
    RyBoneBinding *binding = scene.binding(scene.hip);
    RyWeightMap *map = ryMapOf({65535, 4001});
    for (int axis = 0; axis < 3; ++axis)
        binding->setLocalWeights(map, axis);
    for (RyBone *bone : {scene.lThigh, scene.lShin, scene.lFoot, scene.rThigh}) {
        for (int axis = 0; axis < 3; ++axis)
            scene.binding(bone)->setLocalWeights(ryMapOf({0, quint16(bone == scene.lFoot ? 65535 - 4001 : 0)}), axis);
    }
    const RyBoneBinding *sibling = scene.binding(createSiblingBone(scene.hip));
    QVERIFY(sibling);
    QCOMPARE(ryWeightsOf(map), std::vector<int>({32768, 2001}));
    for (int axis = 0; axis < 3; ++axis) {
        QCOMPARE(binding->getLocalWeights(axis), map);
        QCOMPARE(ryWeightsOf(sibling->getLocalWeights(axis)), std::vector<int>({32767, 2000}));
        QCOMPARE(sibling->getLocalWeights(axis), sibling->getLocalWeights(0));
    }
}

void RySiblingAndSplitTest::splitPlaces()
{
    RySkinnedScene scene;
    RyBone *bone = scene.lThigh;
    bone->setRotationOrder(RyRotationOrder(2));
    bone->setOrigin({2, 10, 4});
    bone->setEndPoint({6, 4, -4});
    bone->setOrientation(RyQuat(RyVec3(1, 0, 0), 0.3f));
    ryScene()->setSelection({bone});
    RyJESplitBoneAction().executeAction();
    const auto *outer = qobject_cast<RyBone *>(bone->getNodeChild(0));
    QVERIFY(outer);
    QCOMPARE(bone->getNumNodeChildren(), 1);
    QCOMPARE(outer->getNodeChild(0), static_cast<RyNode *>(scene.lShin));
    QCOMPARE(bone->getOrigin(), RyVec3(2, 10, 4));
    QCOMPARE(bone->getOrigin(true), RyVec3(10, 95, 0));
    QCOMPARE(outer->getName(), QStringLiteral("lThigh2"));
    QCOMPARE(outer->getLabel(), QStringLiteral("lThigh 2"));
    QCOMPARE(outer->getRotationOrder().order(), 2);
    QVERIFY(bone->inheritsScale());
    QVERIFY(!outer->inheritsScale());
    for (bool byDefault : {false, true}) {
        QCOMPARE(bone->getEndPoint(byDefault), RyVec3(4, 7, 0));
        QCOMPARE(outer->getOrigin(byDefault), RyVec3(4, 7, 0));
        QCOMPARE(outer->getEndPoint(byDefault), RyVec3(6, 4, -4));
        const RyVec3 axis = outer->getOrientation(byDefault).multVec(RyVec3(0, 0, 1));
        QVERIFY((axis - bone->getOrientation().multVec(RyVec3(0, 0, 1))).length() < 1e-5f);
    }
    QCOMPARE(ryFaultsOf(scene.figure), QString());
}

void RySiblingAndSplitTest::splitMovesBoneChildrenInReverse()
{
    RySkinnedScene scene;
    RyToolScene::makeBone(scene.lThigh, "second", {}, {0, 1, 0});
    auto *pinned = new RyNode;
    pinned->setName(QStringLiteral("pinned"));
    scene.lThigh->addNodeChild(pinned);
    auto *worn = new RyFigure;
    worn->setName(QStringLiteral("worn"));
    scene.lThigh->addNodeChild(worn);
    RyToolScene::makeBone(scene.lThigh, "third", {}, {0, 1, 0});
    const RyBone *outer = splitBone(scene.lThigh);
    const auto names = [](const RyNode *node) {
        QStringList list;
        for (const RyNode *child : node->nodeChildrenIterator())
            list.append(child->getName());
        return list;
    };
    QCOMPARE(names(scene.lThigh), QStringList({"pinned", "worn", "lThigh2"}));
    QCOMPARE(names(outer), QStringList({"third", "second", "lShin"}));
    QCOMPARE(names(scene.lShin), QStringList({"lFoot"}));
}

void RySiblingAndSplitTest::splitMovesNoVertex_data()
{
    QTest::addColumn<int>("maps");
    QTest::addColumn<bool>("posed");
    QTest::newRow("general, at rest") << int(RySkinnedScene::General) << false;
    QTest::newRow("general, posed") << int(RySkinnedScene::General) << true;
    QTest::newRow("local, at rest") << int(RySkinnedScene::Local) << false;
    QTest::newRow("both, posed") << int(RySkinnedScene::Both) << true;
}

void RySiblingAndSplitTest::splitMovesNoVertex()
{
    QFETCH(int, maps);
    QFETCH(bool, posed);
    RySkinnedScene scene{RySkinnedScene::Maps(maps)};
    if (posed)
        scene.pose();
    // The maps of a bone that turns about several axes must agree, as the new bone turns along as a whole.
    for (const RyBoneBinding *binding : scene.skin->bindings()) {
        RyWeightMap *first = binding->getLocalWeights(0);
        for (int axis = 1; axis < 3 && first; ++axis) {
            const int affected = first->getNumAffected();
            binding->getLocalWeights(axis)->setAffected(
                first->getNumWeights(), {first->getAffectedIndices(), first->getAffectedIndices() + affected},
                {first->getAffectedWeights(), first->getAffectedWeights() + affected});
        }
    }
    for (RyBone *bone : {scene.hip, scene.lShin, scene.lFoot}) {
        const std::vector<RyVec3> before = scene.shown();
        QCOMPARE(before.size(), size_t(60));
        RyBone *outer = splitBone(bone);
        QVERIFY(outer);
        QVERIFY(ryLargestWay(scene.shown(), before) < 1e-3f);
        QCOMPARE(ryFaultsOf(scene.figure), QString());
        // The new bone has its share: the check above is not one of a skin that does nothing.
        outer->getXRotControl()->setValue(30);
        QVERIFY(ryLargestWay(scene.shown(), before) > 1.0f);
        outer->getXRotControl()->setValue(0);
    }
}

void RySiblingAndSplitTest::splitOfAScaledBone()
{
    RySkinnedScene scene;
    scene.lShin->getYScaleControl()->setValue(2);
    const auto scaleOf = [](const RyBone *bone) {
        RyVec3 position;
        RyQuat rotation;
        RyMatrix3 scale;
        bone->getWSTransform(position, rotation, scale);
        return scale.multVec(RyVec3(0, 1, 0)).length();
    };
    QVERIFY(std::abs(scaleOf(scene.lShin) - 2) < 1e-4f);
    QVERIFY(std::abs(scaleOf(scene.lFoot) - 2) < 1e-4f);
    const std::vector<RyVec3> before = scene.shown();
    const RyBone *outer = splitBone(scene.lShin);
    QVERIFY(std::abs(scaleOf(scene.lShin) - 2) < 1e-4f);
    QVERIFY(std::abs(scaleOf(outer) - 1) < 1e-4f);
    QVERIFY(std::abs(scaleOf(scene.lFoot) - 1) < 1e-4f);
    QVERIFY(ryLargestWay(scene.shown(), before) > 1.0f);
}

void RySiblingAndSplitTest::splitOfABoneWithoutLength()
{
    RySkinnedScene scene;
    scene.lFoot->setEndPoint(scene.lFoot->getOrigin(), true);
    const RyBone *outer = splitBone(scene.lFoot);
    QCOMPARE(outer->getOrigin(), scene.lFoot->getOrigin());
    QCOMPARE(outer->getEndPoint(), scene.lFoot->getOrigin());
}

void RySiblingAndSplitTest::splitManyTimes()
{
    RySkinnedScene scene;
    RyBone *bone = scene.lThigh;
    const RyVec3 end = bone->getEndPoint();
    for (int i = 0; i < 8; ++i)
        bone = splitBone(bone);
    QCOMPARE(bone->getName(), QStringLiteral("lThigh9"));
    QCOMPARE(bone->getEndPoint(), end);
    QCOMPARE(bone->getNodeChild(0), static_cast<RyNode *>(scene.lShin));
    QCOMPARE(ryFaultsOf(scene.figure), QString());
}

void RySiblingAndSplitTest::actionsLeaveUndoAndSelectionAlone()
{
    RySkinnedScene scene;
    {
        RyUndoStackHold hold;
        scene.rThigh->setEndPoint({1, 2, 3});
        hold.accept(QStringLiteral("Earlier"));
    }
    ryScene()->setSelection({scene.hip, scene.lThigh});
    const QSignalSpy selection(ryScene(), SIGNAL(nodeSelectionListChanged()));
    RyJECreateSiblingBoneAction sibling;
    RyJESplitBoneAction split;
    QVERIFY(sibling.isEnabled() && split.isEnabled());
    sibling.trigger();
    split.trigger();
    QCOMPARE(int(scene.figure->getAllBones().size()), 7);
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Earlier"));
    QVERIFY(!ryUndoStack()->isHoldOpen() && !ryUndoStack()->isLocked());
    QCOMPARE(selection.count(), 0);
    QCOMPARE(ryScene()->selectedNodeListIterator(), std::vector<RyNode *>({scene.hip, scene.lThigh}));
    ryUndoStack()->undo();
    QCOMPARE(int(scene.figure->getAllBones().size()), 7);
    QCOMPARE(scene.rThigh->getEndPoint(), RyVec3(-11, 50, 2));
}

void RySiblingAndSplitTest::actionsJoinAnOpenHold()
{
    RySkinnedScene scene(RySkinnedScene::Both);
    ryScene()->setSelection({scene.lThigh});
    checkUndoInHold([] {
        RyJECreateSiblingBoneAction().executeAction();
        RyJESplitBoneAction().executeAction();
    });
}

void RySiblingAndSplitTest::enabling()
{
    RyToolScene scene;
    auto *skeleton = new RySkeleton;
    ryScene()->addNode(skeleton);
    RyBone *itsBone = RyToolScene::makeBone(skeleton, "bone", {}, {0, 1, 0});
    auto *pinned = new RyNode;
    scene.hip->addNodeChild(pinned);
    ryScene()->addNode(pinned);
    const RyJECreateSiblingBoneAction sibling;
    const RyJESplitBoneAction split;
    QString siblings;
    QString splits;
    const std::vector<RyNode *> selections = {nullptr,      scene.prop, skeleton,   itsBone,
                                              scene.figure, pinned,     scene.lShin};
    for (RyNode *node : selections) {
        ryScene()->setSelection({node});
        siblings += QString::number(sibling.isEnabled()) + QString::number(RyJECreateSiblingBoneAction().isEnabled());
        splits += QString::number(split.isEnabled()) + QString::number(RyJESplitBoneAction().isEnabled());
    }
    QCOMPARE(siblings, QStringLiteral("00000000000011"));
    QCOMPARE(splits, QStringLiteral("00111111111111"));
}

RY_TEST(RySiblingAndSplitTest)

#include "tst_siblingAndSplit.moc"
