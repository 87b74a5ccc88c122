#include "support/RyTest.h"

#include "RySidedScene.h"

#include "pluginsource/RyJointTools/operations/mirrorNode.h"
#include "rycore/base/RyERCLink.h"
#include "support/checkUndo.h"

/// The rigging of one node, copied onto another through a plane.
class RyMirrorNodeTest : public QObject
{
    Q_OBJECT

private slots:
    void reflects_data();
    void reflects();
    void backAgain_data() { reflects_data(); }
    void backAgain();
    void writesNoNegativeZero();
    void linkedValues();
    void linkedWithinTarget();
    void ontoItself();
    void bulges_data() { reflects_data(); }
    void bulges();
    void bulgeOnOneSideOnly();
    void withoutBinding();
    void flagAndLabels();
    void poseStays();
    void undoes();
    void toolAnnouncesOrder();
    void nothing();
};

void RyMirrorNodeTest::reflects_data()
{
    QTest::addColumn<int>("axis");
    for (int axis = 0; axis < 3; ++axis)
        QTest::addRow("%c", 'x' + axis) << axis;
}

void RyMirrorNodeTest::reflects()
{
    QFETCH(int, axis);
    RySidedScene scene;
    const std::vector<float> source = valuesOf(scene.lThigh);
    mirrorNode(scene.lThigh, scene.rThigh, axis);
    QCOMPARE(valuesOf(scene.lThigh), source);
    for (const bool byDefault : {false, true}) {
        const double error = reflectionError(scene.lThigh, scene.rThigh, axis, byDefault, 100.0);
        QVERIFY2(error < 1e-4, QByteArray::number(error));
        RyVec3 origin = scene.lThigh->getOrigin(byDefault), end = scene.lThigh->getEndPoint(byDefault);
        origin[axis] = -origin[axis];
        end[axis] = -end[axis];
        QCOMPARE(scene.rThigh->getOrigin(byDefault), origin);
        QCOMPARE(scene.rThigh->getEndPoint(byDefault), end);
        // The axis of the turn is reflected, its angle turned around.
        RyVec3 about, other;
        float angle = 0, otherAngle = 0;
        scene.lThigh->getOrientation(byDefault).getValue(about, angle);
        scene.rThigh->getOrientation(byDefault).getValue(other, otherAngle);
        about[axis] = -about[axis];
        const RyQuat expected(about, -angle), got(other, otherAngle);
        for (int k = 0; k < 3; ++k)
            QVERIFY((expected.multVec(RyVec3::axis(k)) - got.multVec(RyVec3::axis(k))).length() < 1e-5f);
    }
    QVERIFY(scene.rThigh->getRotationOrder() == RyRotationOrder(RyRotationOrder::YZX));
}

void RyMirrorNodeTest::backAgain()
{
    QFETCH(int, axis);
    RySidedScene scene;
    const std::vector<float> before = valuesOf(scene.lShin);
    mirrorNode(scene.lShin, scene.rShin, axis);
    mirrorNode(scene.rShin, scene.lShin, axis);
    QCOMPARE(valuesOf(scene.lShin), before);
}

void RyMirrorNodeTest::writesNoNegativeZero()
{
    RySidedScene scene;
    scene.lFoot->setOrigin({0, 3, 0}, true);
    scene.lFoot->setOrientation(RyQuat(), true);
    mirrorNode(scene.lFoot, scene.rFoot, 0);
    for (const float value : valuesOf(scene.rFoot))
        QVERIFY(value != 0.0f || !std::signbit(value));
}

/// A link adds to the target's value: what results is the reflection all the same.
void RyMirrorNodeTest::linkedValues()
{
    RySidedScene scene;
    RyFloatProperty *driven = scene.rThigh->getOriginYControl();
    RyERCLink::create(scene.prop->getXTransControl(), driven);
    scene.prop->getXTransControl()->setValue(7.3f);
    QVERIFY(driven->getValue() != driven->getRawValue());
    mirrorNode(scene.lThigh, scene.rThigh, 0);
    QVERIFY(std::abs(driven->getValue() - scene.lThigh->getOrigin()[1]) < 1e-4f);
}

/// What is written last drives what was written first.
void RyMirrorNodeTest::linkedWithinTarget()
{
    RySidedScene scene;
    RyERCLink::create(scene.rThigh->getEndZControl(), scene.rThigh->getOriginXControl());
    mirrorNode(scene.lThigh, scene.rThigh, 0);
    for (const bool byDefault : {false, true}) {
        const double error = reflectionError(scene.lThigh, scene.rThigh, 0, byDefault, 100.0);
        QVERIFY2(error < 1e-4, QByteArray::number(error));
    }
}

/// Where prefixes of both sides are the same. Twice gives what was there.
void RyMirrorNodeTest::ontoItself()
{
    RySidedScene scene;
    scene.addSkin({scene.lThigh});
    const auto bulge = RySidedScene::controlsOf(scene.skin->findBoneBinding(scene.lThigh)->getBulgeBinding(1));
    const float positiveLeft = bulge[0]->getValue(), negativeRight = bulge[3]->getValue();
    const QString before = scene.dump();
    mirrorNode(scene.lThigh, scene.lThigh, 0);
    QCOMPARE(bulge[0]->getValue(), negativeRight);
    QCOMPARE(bulge[3]->getValue(), positiveLeft);
    mirrorNode(scene.lThigh, scene.lThigh, 0);
    QCOMPARE(scene.dump(), before);
}

void RyMirrorNodeTest::bulges()
{
    QFETCH(int, axis);
    RySidedScene scene;
    scene.addSkin({scene.lThigh, scene.rThigh});
    QVERIFY(mirrorNode(scene.lThigh, scene.rThigh, axis) == MirrorResult::Done);
    const RyBoneBinding *from = scene.skin->findBoneBinding(scene.lThigh);
    const RyBoneBinding *to = scene.skin->findBoneBinding(scene.rThigh);
    const size_t same[4] = {0, 1, 2, 3}, crosswise[4] = {3, 2, 1, 0};
    for (int k = 0; k < 3; ++k) {
        const auto source = RySidedScene::controlsOf(from->getBulgeBinding(k));
        const auto target = RySidedScene::controlsOf(to->getBulgeBinding(k));
        for (size_t i = 0; i < 4; ++i) {
            const size_t j = (k == axis ? same : crosswise)[i];
            QCOMPARE(target[j]->getValue(), source[i]->getValue());
            QCOMPARE(target[j]->getDefaultValue(), source[i]->getDefaultValue());
        }
    }
}

void RyMirrorNodeTest::bulgeOnOneSideOnly()
{
    RySidedScene scene;
    scene.addSkin({scene.lThigh, scene.rThigh});
    scene.skin->findBoneBinding(scene.rThigh)->setBulgeBinding(1, nullptr);
    const auto first = [](const RyBoneBinding *binding, int axis) {
        return binding->getBulgeBinding(axis)->getPosLeftBulgeController()->getValue();
    };
    QVERIFY(mirrorNode(scene.lThigh, scene.rThigh, 0) == MirrorResult::Done);
    QCOMPARE(first(scene.skin->findBoneBinding(scene.rThigh), 0), first(scene.skin->findBoneBinding(scene.lThigh), 0));
    QVERIFY(!scene.skin->findBoneBinding(scene.rThigh)->getBulgeBinding(1));
}

/// The rigging comes over, and nothing after it.
void RyMirrorNodeTest::withoutBinding()
{
    for (const bool isSourceBound : {true, false}) {
        RySidedScene scene;
        scene.addSkin({isSourceBound ? scene.lThigh : scene.rThigh});
        scene.lThigh->setInheritScale(!scene.rThigh->inheritsScale());
        scene.lThigh->getXRotControl()->setLabel("Kick");
        QVERIFY(mirrorNode(scene.lThigh, scene.rThigh, 0) == MirrorResult::WithoutBulges);
        QVERIFY(reflectionError(scene.lThigh, scene.rThigh, 0, false, 100.0) < 1e-4);
        QVERIFY(scene.lThigh->inheritsScale() != scene.rThigh->inheritsScale());
        QVERIFY(scene.rThigh->getXRotControl()->getLabel() != "Kick");
    }
}

void RyMirrorNodeTest::flagAndLabels()
{
    RySidedScene scene;
    scene.addSkin({scene.lThigh, scene.rThigh});
    const auto controls = [](const RyNode *node) {
        return std::vector<RyFloatProperty *>{
            node->getXTransControl(), node->getYTransControl(), node->getZTransControl(), node->getXRotControl(),
            node->getYRotControl(),   node->getZRotControl(),   node->getScaleControl(),  node->getXScaleControl(),
            node->getYScaleControl(), node->getZScaleControl()};
    };
    for (const bool inherits : {false, true}) {
        scene.lThigh->setInheritScale(inherits);
        for (RyFloatProperty *control : controls(scene.lThigh))
            control->setLabel("Left " + control->getName());
        mirrorNode(scene.lThigh, scene.rThigh, 0);
        QCOMPARE(scene.rThigh->inheritsScale(), inherits);
        for (RyFloatProperty *control : controls(scene.rThigh))
            QCOMPARE(control->getLabel(), "Right " + control->getName());
    }
}

void RyMirrorNodeTest::poseStays()
{
    RySidedScene scene;
    scene.rThigh->getXRotControl()->setMin(-33.0f);
    mirrorNode(scene.lThigh, scene.rThigh, 0);
    QCOMPARE(scene.rThigh->getXRotControl()->getValue(), 12.0f);
    QCOMPARE(scene.rThigh->getXRotControl()->getMin(), -33.0f);
}

void RyMirrorNodeTest::undoes()
{
    RySidedScene scene;
    scene.addSkin({scene.lThigh, scene.rThigh});
    scene.lThigh->getYRotControl()->setLabel("L Twist");
    scene.lThigh->setInheritScale(!scene.rThigh->inheritsScale());
    checkUndoInHold([&] { mirrorNode(scene.lThigh, scene.rThigh, 2); });
}

void RyMirrorNodeTest::toolAnnouncesOrder()
{
    RySidedScene scene;
    scene.select(scene.rThigh);
    int announced = 0;
    QObject::connect(scene.tool, &RyJointEditorTool::nodeChanged, scene.tool, [&] { ++announced; });
    QVERIFY(!scene.tool->mirrorNode(scene.lThigh, scene.rThigh, 0)); // no skin binds them
    QCOMPARE(announced, 1);
    scene.tool->mirrorNode(scene.lThigh, scene.rThigh, 0); // the order is there already
    scene.tool->mirrorNode(scene.lShin, scene.rShin, 0);   // not the tool's node
    QCOMPARE(announced, 1);
    QVERIFY(scene.rShin->getRotationOrder() == scene.lShin->getRotationOrder());
}

void RyMirrorNodeTest::nothing()
{
    RySidedScene scene;
    const QString before = scene.dump();
    mirrorNode(nullptr, scene.rThigh, 0);
    mirrorNode(scene.lThigh, nullptr, 0);
    mirrorNode(scene.lThigh, scene.rThigh, 3);
    mirrorNode(scene.lThigh, scene.rThigh, -1);
    QCOMPARE(scene.dump(), before);
}

RY_TEST(RyMirrorNodeTest)
#include "tst_mirrorNode.moc"
