#include "support/RyNear.h"
#include "support/RyTest.h"

#include "tool/RyToolScene.h"

#include "pluginsource/RyJointTools/operations/alignNode.h"
#include "pluginsource/RyJointTools/operations/snapPoints.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QSignalSpy>

#include <random>

namespace {

bool isFinite(const RyVec3 &v)
{
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

} // namespace

/// Align, snap, and edits carried on to the bones below.
class RyOperationsTest : public QObject
{
    Q_OBJECT

private slots:
    void alignPointsTheFirstAxis();
    void alignBackwards();
    void alignWithoutLength();
    void alignKeepsDefaultsAndUndoes();
    void alignBranchStopsAtOthers();
    void snapCenter();
    void snapEnd();
    void translationOneAxis();
    void translationStaysInTheFigure();
    void orientation();
    void rotation();
    void childRotation();
    void scale();
    void modesOnBelowTheNode_data();
    void modesOnBelowTheNode();
    void followUpOnceAfterPlacing();
    void nothingForNull();
};

void RyOperationsTest::alignPointsTheFirstAxis()
{
    std::mt19937 random(ryTestSeed());
    std::uniform_real_distribution<float> number(-50.0f, 50.0f);
    const RyRef<RyBone> bone(new RyBone);
    for (int i = 0; i < 300; ++i) {
        bone->setRotationOrder(RyRotationOrder(i % 6));
        bone->setOrigin({number(random), number(random), number(random)}, true);
        bone->setEndPoint({number(random), number(random), number(random)}, true);
        bone->setOrientation(RyQuat(RyVec3(number(random), number(random), number(random)), number(random)), true);
        QVERIFY(alignNode(bone));
        const int first = bone->getRotationOrder()[0];
        const RyVec3 way = bone->getEndPoint() - bone->getOrigin();
        const float sign = way[first] < 0.0f ? -1.0f : 1.0f;
        QVERIFY(ryIsNear(bone->getOrientation().multVec(RyVec3::axis(first) * sign), way.normalized(), 1e-4f));
        // The unposed world transform and the orientation put the drawn tip on the end point.
        const RyVec3 tip = bone->getOrientation().multVec(RyVec3::axis(first) * (sign * way.length()));
        QVERIFY(ryIsNear(bone->getWSTransform().multVecMatrix(tip), bone->getWSEndPoint(), 2e-3f));
    }
}

void RyOperationsTest::alignBackwards()
{
    const RyRef<RyBone> bone(new RyBone);
    bone->setOrigin({10, 1, 1});
    bone->setEndPoint({4, 1, 1});
    QVERIFY(alignNode(bone));
    QCOMPARE(bone->getOrientation(), RyQuat());
    QVERIFY(!alignNode(nullptr));
    const RyRef<RyNode> prop(new RyNode);
    prop->setEndPoint({0, 3, 0});
    QVERIFY(alignNode(prop));
    QVERIFY(ryIsNear(prop->getOrientation().multVec(RyVec3(1, 0, 0)), RyVec3(0, 1, 0), 1e-4f));
}

void RyOperationsTest::alignWithoutLength()
{
    const RyRef<RyBone> bone(new RyBone);
    bone->setOrientation(RyQuat(RyVec3(0, 1, 0), 1.0f));
    QVERIFY(alignNode(bone));
    QCOMPARE(bone->getOrientation(), RyQuat());
}

void RyOperationsTest::alignKeepsDefaultsAndUndoes()
{
    RyToolScene scene;
    const QString before = scene.dump();
    {
        RyUndoStackHold hold;
        QVERIFY(alignNode(scene.lShin));
        hold.accept(QStringLiteral("align"));
    }
    const QString after = scene.dump();
    QVERIFY(after != before);
    QCOMPARE(scene.lShin->getOrientation(true), RyQuat());
    QCOMPARE(scene.lShin->getOrigin(), RyVec3(11, 50, 2));
    QCOMPARE(scene.lShin->getEndPoint(), RyVec3(10, 8, -1));
    ryUndoStack()->undo();
    QCOMPARE(scene.dump(), before);
    ryUndoStack()->redo();
    QCOMPARE(scene.dump(), after);
}

void RyOperationsTest::alignBranchStopsAtOthers()
{
    RyToolScene scene;
    auto *between = new RyNode;
    scene.lFoot->addNodeChild(between);
    RyBone *beyond = RyToolScene::makeBone(between, "beyond", {0, 0, 0}, {0, 5, 0});
    QVERIFY(alignBranch(scene.lThigh));
    for (const RyBone *bone : {scene.lThigh, scene.lShin, scene.lFoot})
        QVERIFY(bone->getOrientation() != RyQuat());
    QCOMPARE(beyond->getOrientation(), RyQuat());
    QVERIFY(!alignBranch(between));
    QVERIFY(!alignBranch(nullptr));
    QVERIFY(!alignBranch(scene.figure));
}

void RyOperationsTest::snapCenter()
{
    RyToolScene scene;
    QVERIFY(!snapCenterPoint(nullptr));
    QVERIFY(!snapCenterPoint(scene.prop));
    QVERIFY(!snapCenterPoint(scene.figure));
    QSignalSpy rigging(scene.rThigh, &RyNode::riggingChanged);
    QVERIFY(snapCenterPoint(scene.rThigh));
    QCOMPARE(scene.rThigh->getOrigin(), RyVec3(0, 112, 1));
    QCOMPARE(scene.rThigh->getOrigin(true), RyVec3(-10, 95, 0));
    QCOMPARE(scene.rThigh->getEndPoint(), RyVec3(-11, 50, 2));
    QCOMPARE(rigging.count(), 1);
    QCOMPARE(scene.rThigh->editLevel(), 0);
}

void RyOperationsTest::snapEnd()
{
    RyToolScene scene;
    QVERIFY(!snapEndPoint(nullptr));
    const QString before = scene.dump();
    QVERIFY(snapEndPoint(scene.lFoot));
    QCOMPARE(scene.dump(), before);

    auto *other = new RyNode;
    other->setOrigin({1000, 1000, 1000});
    scene.hip->addNodeChild(other);
    QSignalSpy rigging(scene.hip, &RyNode::riggingChanged);
    QVERIFY(snapEndPoint(scene.hip));
    QCOMPARE(scene.hip->getEndPoint(), RyVec3(0, 95, 0)); // (10, 95, 0) and (-10, 95, 0)
    QCOMPARE(scene.hip->getEndPoint(true), RyVec3(0, 112, 1));
    QCOMPARE(rigging.count(), 1);

    scene.prop->addNodeChild(new RyNode);
    scene.prop->setEndPoint({3, 3, 3});
    QVERIFY(snapEndPoint(scene.prop));
    QVERIFY(isFinite(scene.prop->getEndPoint()));
    QCOMPARE(scene.prop->getEndPoint(), RyVec3(0, 0, 0));
}

void RyOperationsTest::translationOneAxis()
{
    RyToolScene scene;
    scene.tool->performTransPropagation(scene.lShin, 1, 2.5f, false, false);
    QCOMPARE(scene.lShin->getOrigin(), RyVec3(11, 50, 2));
    QCOMPARE(scene.lShin->getEndPoint(), RyVec3(10, 10.5f, -1));
    QCOMPARE(scene.lFoot->getOrigin(), RyVec3(10, 8, -1));
    scene.tool->performTransPropagation(scene.lShin, 2, -1.0f, true, true);
    QCOMPARE(scene.lShin->getEndPoint(), RyVec3(10, 10.5f, -2));
    QCOMPARE(scene.lFoot->getOrigin(), RyVec3(10, 8, -2));
    QCOMPARE(scene.lFoot->getEndPoint(), RyVec3(11, 2, 12));
    const QString before = scene.dump();
    scene.tool->performTransPropagation(scene.lShin, 3, 1.0f, true, true);
    scene.tool->performTransPropagation(scene.lShin, -1, 1.0f, true, true);
    scene.tool->performTransPropagation(scene.lShin, RyVec3(1, 2, 3), RyVec3(1, 2, 3));
    QCOMPARE(scene.dump(), before);
}

void RyOperationsTest::translationStaysInTheFigure()
{
    RyToolScene scene;
    auto *worn = new RyFigure;
    worn->setName(QStringLiteral("worn"));
    RyBone *strange = RyToolScene::makeBone(worn, "strange", {1, 1, 1}, {2, 2, 2});
    scene.lFoot->addNodeChild(worn);
    scene.tool->performTransPropagation(scene.hip, RyVec3(0, 100, 0), RyVec3(0, 103, 0));
    QCOMPARE(scene.hip->getEndPoint(), RyVec3(0, 115, 1));
    QCOMPARE(scene.lFoot->getOrigin(), RyVec3(10, 11, -1));
    QCOMPARE(scene.rThigh->getEndPoint(), RyVec3(-11, 53, 2));
    QCOMPARE(strange->getOrigin(), RyVec3(1, 1, 1));
}

void RyOperationsTest::orientation()
{
    RyToolScene scene;
    const RyQuat own(RyVec3(0, 0, 1), 0.3f);
    const RyQuat turn(RyVec3(1, 0, 0), 0.7f);
    scene.lFoot->setOrientation(own, true);
    scene.tool->performOrientPropagation(scene.lThigh, turn);
    QCOMPARE(scene.lThigh->getOrientation(), RyQuat());
    for (const RyVec3 &axis : {RyVec3(1, 0, 0), RyVec3(0, 1, 0), RyVec3(0, 0, 1)}) {
        QVERIFY(ryIsNear(scene.lShin->getOrientation().multVec(axis), turn.multVec(axis), 1e-4f));
        QVERIFY(ryIsNear(scene.lFoot->getOrientation().multVec(axis), turn.multVec(own.multVec(axis)), 1e-4f));
    }
    QVERIFY(ryIsNear(scene.lFoot->getOrientation(true).multVec(RyVec3(1, 0, 0)), own.multVec(RyVec3(1, 0, 0)), 1e-4f));
}

void RyOperationsTest::rotation()
{
    RyToolScene scene;
    // A quarter turn about Z, right-handed: X goes to Y.
    const float quarter = float(M_PI / 2);
    scene.lThigh->setOrigin({0, 0, 0});
    scene.lThigh->setEndPoint({2, 0, 1});
    scene.tool->performRotPropagation(scene.lThigh, 2, quarter, false, false);
    QVERIFY(ryIsNear(scene.lThigh->getEndPoint(), RyVec3(0, 2, 1), 1e-4f));
    QVERIFY(ryIsNear(scene.lThigh->getOrientation().multVec(RyVec3(1, 0, 0)), RyVec3(0, 1, 0), 1e-4f));
    QCOMPARE(scene.lShin->getOrigin(), RyVec3(11, 50, 2));
    scene.tool->performRotPropagation(scene.lThigh, 2, quarter, true, false);
    QVERIFY(ryIsNear(scene.lThigh->getEndPoint(), RyVec3(-2, 0, 1), 1e-4f));
    QVERIFY(ryIsNear(scene.lShin->getOrigin(), RyVec3(-50, 11, 2), 1e-4f));
    QVERIFY(ryIsNear(scene.lShin->getEndPoint(), RyVec3(-8, 10, -1), 1e-4f));
    QVERIFY(ryIsNear(scene.lFoot->getEndPoint(), RyVec3(-2, 11, 13), 1e-4f));
    QVERIFY(ryIsNear(scene.lFoot->getOrientation().multVec(RyVec3(1, 0, 0)), RyVec3(0, 1, 0), 1e-4f));
    QCOMPARE(scene.lFoot->getOrigin(true), RyVec3(10, 8, -1));
    // No angle but 0 means nothing to do, 1 among them.
    scene.rThigh->setOrigin({0, 0, 0});
    scene.rThigh->setEndPoint({2, 0, 1});
    scene.tool->performRotPropagation(scene.rThigh, 2, 1.0f, false, false);
    QVERIFY(ryIsNear(scene.rThigh->getEndPoint(), RyVec3(2 * std::cos(1.0f), 2 * std::sin(1.0f), 1), 1e-4f));
}

void RyOperationsTest::childRotation()
{
    RyToolScene scene;
    RyVec3 center(10, 8, -1);
    scene.tool->performChildRotPropagation(scene.lFoot, 1, float(M_PI), false, false, center);
    QVERIFY(ryIsNear(scene.lFoot->getOrigin(), RyVec3(10, 8, -1), 1e-4f));
    QVERIFY(ryIsNear(scene.lFoot->getEndPoint(), RyVec3(9, 2, -15), 1e-4f));
    QCOMPARE(center, RyVec3(10, 8, -1));
    RyVec3 above(0, 0, 0);
    scene.tool->performChildRotPropagation(scene.lShin, 1, float(M_PI), true, false, above);
    QVERIFY(ryIsNear(scene.lShin->getOrigin(), RyVec3(-11, 50, -2), 1e-4f));
    QVERIFY(ryIsNear(scene.lFoot->getOrigin(), RyVec3(-10, 8, 1), 1e-4f));
    RyVec3 zero(0, 0, 0);
    scene.rThigh->setOrigin({0, 3, 4});
    scene.tool->performChildRotPropagation(scene.rThigh, 0, 1.0f, false, false, zero);
    QVERIFY(ryIsNear(scene.rThigh->getOrigin(),
                     RyVec3(0, 3 * std::cos(1.0f) - 4 * std::sin(1.0f), 3 * std::sin(1.0f) + 4 * std::cos(1.0f)),
                     1e-4f));
}

void RyOperationsTest::scale()
{
    RyToolScene scene;
    scene.tool->performScalePropagation(scene.lShin, 1, 2.0f, false, false);
    QCOMPARE(scene.lShin->getEndPoint(), RyVec3(10, 50 + 2 * (8 - 50), -1));
    QCOMPARE(scene.lFoot->getOrigin(), RyVec3(10, 8, -1));
    scene.tool->performScalePropagation(scene.lThigh, 0, 0.5f, true, false);
    // About x = 10.
    QCOMPARE(scene.lThigh->getEndPoint(), RyVec3(10.5f, 50, 2));
    QCOMPARE(scene.lShin->getOrigin(), RyVec3(10.5f, 50, 2));
    QCOMPARE(scene.lFoot->getEndPoint(), RyVec3(10.5f, 2, 13));
    QCOMPARE(scene.lThigh->getOrigin(), RyVec3(10, 95, 0));
}

void RyOperationsTest::modesOnBelowTheNode_data()
{
    QTest::addColumn<int>("operation");
    const char *names[] = {"rotation", "child rotation", "scale", "translation", "translation by an axis"};
    for (int i = 0; i < 5; ++i)
        QTest::newRow(names[i]) << i;
}

void RyOperationsTest::modesOnBelowTheNode()
{
    QFETCH(int, operation);
    const auto run = [operation](RyToolScene &scene) {
        RyVec3 center(1, 2, 3);
        switch (operation) {
        case 0:
            scene.tool->performRotPropagation(scene.lThigh, 0, 0.6f, true, false);
            break;
        case 1:
            scene.tool->performChildRotPropagation(scene.lThigh, 2, 0.6f, true, false, center);
            break;
        case 2:
            scene.tool->performScalePropagation(scene.lThigh, 1, 1.5f, true, false);
            break;
        case 3:
            scene.tool->performTransPropagation(scene.lThigh, RyVec3(0, 0, 0), RyVec3(3, 4, 5));
            break;
        default:
            scene.tool->performTransPropagation(scene.lThigh, 1, 6.0f, true, false);
            break;
        }
    };
    const auto points = [](const RyToolScene &scene) {
        std::vector<RyVec3> found;
        for (const RyBone *bone : {scene.hip, scene.lThigh, scene.lShin, scene.lFoot, scene.rThigh}) {
            found.push_back(bone->getOrigin());
            found.push_back(bone->getEndPoint());
        }
        return found;
    };
    // What the operation does on its own, with nothing selected ...
    std::vector<RyVec3> expected;
    {
        RyToolScene scene;
        run(scene);
        expected = points(scene);
    }
    // ... it does too while the tool follows a node below and carries on what that node does.
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.tool->setPropagateTranslation(true);
    const QString before = scene.dump();
    {
        RyUndoStackHold hold;
        run(scene);
        hold.accept(QStringLiteral("edit"));
    }
    const QString after = scene.dump();
    QVERIFY(after != before);
    const std::vector<RyVec3> found = points(scene);
    for (size_t i = 0; i < found.size(); ++i)
        QCOMPARE(found[i], expected[i]);
    QCOMPARE(scene.tool->cachedOrigin(), scene.lShin->getOrigin());
    ryUndoStack()->undo();
    QCOMPARE(scene.dump(), before);
    ryUndoStack()->redo();
    QCOMPARE(scene.dump(), after);
}

void RyOperationsTest::followUpOnceAfterPlacing()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.tool->setAutoSnapEndPoints(true);
    scene.tool->setAutoAlign(true);
    scene.lThigh->setEndPoint({0, 0, 0});
    QSignalSpy rigging(scene.lThigh, &RyNode::riggingChanged);
    scene.tool->performScalePropagation(scene.hip, 0, 2.0f, true, false);
    // The follow-up is that of the new places: the thigh ends where the shin begins, and both are aligned.
    QCOMPARE(scene.lShin->getOrigin(), RyVec3(22, 50, 2));
    QCOMPARE(scene.lShin->getEndPoint(), RyVec3(20, 8, -1));
    QCOMPARE(scene.lThigh->getEndPoint(), RyVec3(22, 50, 2));
    for (const RyBone *bone : {scene.lThigh, scene.lShin}) {
        const RyVec3 direction = (bone->getEndPoint() - bone->getOrigin()).normalized();
        const float sign = direction.x < 0.0f ? -1.0f : 1.0f;
        QVERIFY(ryIsNear(bone->getOrientation().multVec(RyVec3::axis(0) * sign), direction, 1e-4f));
        QCOMPARE(bone->editLevel(), 0);
    }
    QVERIFY(rigging.count() > 0);
}

void RyOperationsTest::nothingForNull()
{
    RyToolScene scene;
    const QString before = scene.dump();
    RyVec3 center;
    RyJointEditorTool *tool = scene.tool;
    tool->performTransPropagation(nullptr, RyVec3(), RyVec3(1, 1, 1));
    tool->performTransPropagation(nullptr, 0, 1.0f, true, true);
    tool->performOrientPropagation(nullptr, RyQuat(RyVec3(1, 0, 0), 1.0f));
    tool->performRotPropagation(nullptr, 0, 1.0f, true, true);
    tool->performChildRotPropagation(nullptr, 0, 1.0f, true, true, center);
    tool->performScalePropagation(nullptr, 0, 2.0f, true, true);
    QCOMPARE(scene.dump(), before);
}

RY_TEST(RyOperationsTest)

#include "tst_operations.moc"
