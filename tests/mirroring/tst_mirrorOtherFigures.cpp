#include "support/RyTest.h"

#include "RySidedScene.h"
#include "tool_actions/RyParametricToolScene.h"

#include "pluginsource/RyJointTools/operations/changeRotationOrder.h"
#include "pluginsource/RyJointTools/operations/mirrorBones.h"
#include "pluginsource/RyJointTools/operations/mirrorNode.h"
#include "support/checkUndo.h"

namespace {

/// Kind, axis and name of the parameters that a bone drives, on its own joint, its parent's and its child's. A name
/// that begins with the bone's is told without it.
QStringList drivenBy(const ParametricScene &doll, const RyBone *bone, const RyBone *child)
{
    QStringList texts;
    for (const RyNode *node : {static_cast<const RyNode *>(bone), static_cast<const RyNode *>(bone->getNodeParent()),
                               static_cast<const RyNode *>(child)}) {
        for (const RyLegacyJointParam *param : doll.joint(qobject_cast<const RyBone *>(node))->params()) {
            if (param->getDriver() != bone)
                continue;
            QString name = param->getName();
            if (name.startsWith(bone->getName() + '_'))
                name = "*" + name.mid(bone->getName().size());
            texts << QStringLiteral("%1 %2 %3").arg(param->type()).arg(param->getAxis()).arg(name);
        }
    }
    return texts;
}

/// Labels of the pose controls that say a side, and the flag unlike the target's.
void prepare(RyNode *source, const RyNode *target)
{
    for (RyFloatProperty *control :
         {source->getXTransControl(), source->getYRotControl(), source->getScaleControl(), source->getZScaleControl()})
        control->setLabel("Left " + control->getName());
    source->setInheritScale(!target->inheritsScale());
}

void checkPrepared(const RyNode *source, const RyNode *target)
{
    QCOMPARE(target->inheritsScale(), source->inheritsScale());
    for (const RyFloatProperty *control :
         {target->getXTransControl(), target->getYRotControl(), target->getScaleControl(), target->getZScaleControl()})
        QCOMPARE(control->getLabel(), "Right " + control->getName());
}

} // namespace

/// Mirroring in figures that are not weight mapped, and with figures that hang on others.
class RyMirrorOtherFiguresTest : public QObject
{
    Q_OBJECT

private slots:
    void paramsFollowTheOrder_data();
    void paramsFollowTheOrder();
    void parametricFigure();
    void withoutJoints_data();
    void withoutJoints();
    void plainSkeleton();
    void hungFigure();
};

void RyMirrorOtherFiguresTest::paramsFollowTheOrder_data()
{
    QTest::addColumn<int>("order");
    for (const int order :
         {RyRotationOrder::XZY, RyRotationOrder::YXZ, RyRotationOrder::YZX, RyRotationOrder::ZXY, RyRotationOrder::ZYX})
        QTest::addRow("%d", order) << order;
}

/// Parameters of the target are named and turned after the order that it gets, on all joints that have some.
void RyMirrorOtherFiguresTest::paramsFollowTheOrder()
{
    QFETCH(int, order);
    RyParametricToolScene scene;
    const ParametricScene &doll = scene.doll;
    QCOMPARE(drivenBy(doll, doll.rHand, doll.rTip), drivenBy(doll, doll.lHand, doll.lTip));
    changeRotationOrder(doll.lHand, RyRotationOrder(order));
    const QStringList wanted = drivenBy(doll, doll.lHand, doll.lTip);
    QVERIFY(wanted.size() >= 7);
    QVERIFY(drivenBy(doll, doll.rHand, doll.rTip) != wanted);
    const QString before = scene.wholeDump();
    RyUndoStackHold hold;
    QVERIFY(scene.tool->mirrorNode(doll.lHand, doll.rHand, 0));
    hold.accept("Mirror");
    QVERIFY(doll.rHand->getRotationOrder() == RyRotationOrder(order));
    QCOMPARE(drivenBy(doll, doll.rHand, doll.rTip), wanted);
    QCOMPARE(drivenBy(doll, doll.lHand, doll.lTip), wanted);
    checkLastStep(before);
}

void RyMirrorOtherFiguresTest::parametricFigure()
{
    RyParametricToolScene scene;
    const ParametricScene &doll = scene.doll;
    prepare(doll.lHand, doll.rHand);
    const QString before = scene.wholeDump();
    RyUndoStackHold hold;
    QVERIFY(mirrorNode(doll.lHand, doll.rHand, 0) == MirrorResult::Done);
    hold.accept("Mirror");
    checkPrepared(doll.lHand, doll.rHand);
    checkLastStep(before);
}

void RyMirrorOtherFiguresTest::withoutJoints_data()
{
    QTest::addColumn<bool>("sourceHasOne");
    QTest::newRow("target has none") << true;
    QTest::newRow("source has none") << false;
}

/// No joint is made, and what follows after the joints comes over.
void RyMirrorOtherFiguresTest::withoutJoints()
{
    QFETCH(bool, sourceHasOne);
    RyWindowScene scene;
    ParametricScene doll(false);
    doll.makeUntidy();
    for (RyBone *bone : {doll.chest, sourceHasOne ? doll.lArm : doll.rArm, sourceHasOne ? doll.lHand : doll.rHand})
        RyLegacyJointMaker(bone, RyLegacyJointMaker::Side::ByEndPoint).make(bone->getNodeParent(), true);
    ryUndoStack()->clearAll();
    prepare(doll.lHand, doll.rHand);
    const QString before = scene.dump();
    RyUndoStackHold hold;
    QVERIFY(mirrorNode(doll.lHand, doll.rHand, 0) == MirrorResult::Done);
    hold.accept("Mirror");
    checkPrepared(doll.lHand, doll.rHand);
    QCOMPARE(bool(doll.joint(doll.lHand)), sourceHasOne);
    QCOMPARE(bool(doll.joint(doll.rHand)), !sourceHasOne);
    checkLastStep(before);
}

/// A skeleton that is no figure has bones and nothing that they move.
void RyMirrorOtherFiguresTest::plainSkeleton()
{
    RyWindowScene scene;
    auto *skeleton = new RySkeleton;
    skeleton->setName("cage");
    ryScene()->addNode(skeleton);
    RyBone *left = RyToolScene::makeBone(skeleton, "lBar", {20, 90, 1}, {25, 50, 3});
    RyBone *right = RyToolScene::makeBone(skeleton, "rBar", {-10, 80, 0}, {-15, 30, 0});
    left->setOrientation(RyQuat({1, 2, 3}, 0.7f), true);
    left->setOrigin({21, 93, 4});
    skeleton->getYRotControl()->setValue(33.0f);
    prepare(left, right);
    const QString before = scene.dump();
    RyUndoStackHold hold;
    QVERIFY(mirrorNode(left, right, 0) == MirrorResult::Done);
    hold.accept("Mirror");
    for (const bool byDefault : {false, true})
        QVERIFY(reflectionError(left, right, 0, byDefault, 100.0) < 1e-4);
    checkPrepared(left, right);
    checkLastStep(before);
}

/// The bones of a suit that hangs on a figure have names with the same stems and come first: each side finds its
/// opposite among its own.
void RyMirrorOtherFiguresTest::hungFigure()
{
    RySidedScene scene;
    auto *suit = new RyFigure;
    suit->setName("suit");
    scene.hip->addNodeChild(suit, false, 0);
    ryScene()->addNode(suit);
    RyBone *left = RyToolScene::makeBone(suit, "leftThigh", {20, 90, 0}, {20, 50, 0});
    RyBone *right = RyToolScene::makeBone(suit, "rightThigh", {-14, 80, 3}, {-12, 42, 5});
    left->setOrigin({22, 91, 2});
    left->setOrientation(RyQuat({1, 2, 3}, 0.7f), true);
    ryUndoStack()->clearAll();
    const QString before = scene.dump();
    MirrorOptions options;
    options.nodes = MirrorOptions::RootRecursive;
    options.direction = MirrorOptions::LeftToRight;
    QStringList pairs;
    RyUndoStackHold hold;
    mirrorBones(scene.hip, options, [&pairs](RyNode *source, RyNode *target, int axis) {
        pairs << source->getName() + '-' + target->getName();
        mirrorNode(source, target, axis);
        return true;
    });
    hold.accept("Mirror");
    QCOMPARE(pairs, QStringList({"leftThigh-rightThigh", "lThigh-rThigh", "lShin-rightShin", "lFoot-rFoot"}));
    for (const bool byDefault : {false, true}) {
        QVERIFY(reflectionError(left, right, 0, byDefault, 100.0) < 1e-4);
        QVERIFY(reflectionError(scene.lThigh, scene.rThigh, 0, byDefault, 100.0) < 1e-4);
    }
    checkLastStep(before);
}

RY_TEST(RyMirrorOtherFiguresTest)
#include "tst_mirrorOtherFigures.moc"
