#include "support/RyTest.h"

#include "RyToolScene.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QSignalSpy>

/// Whether the first axis lies along the bone.
static bool isAligned(const RyBone &bone)
{
    const RyVec3 direction = (bone.getEndPoint() - bone.getOrigin()).normalized();
    const RyVec3 axis = bone.getOrientation().multVec(RyVec3::axis(0));
    return (axis * (direction.x < 0 ? -1.0f : 1.0f) - direction).length() < 1e-4f;
}

/// What the tool does when points of its node change.
class RyJointEditorToolFollowUpTest : public QObject
{
    Q_OBJECT

private slots:
    void followsOriginIncrementally();
    void propagationOnlyOutsideUndo();
    void undoPropagatesNothing();
    void endPointPropagatesNothing();
    void autoSnap();
    void autoSnapWithoutBones();
    void autoAlign();
    void autoAlignAfterPropagation();
    void followUpNeedsAParent();
};

void RyJointEditorToolFollowUpTest::followsOriginIncrementally()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.tool->setPropagateTranslation(true);
    scene.lShin->setOrigin({12, 53, 7}); // by (1, 3, 5), announced axis by axis
    QCOMPARE(scene.lShin->getEndPoint(), RyVec3(11, 11, 4));
    QCOMPARE(scene.lFoot->getOrigin(), RyVec3(11, 11, 4));
    QCOMPARE(scene.lFoot->getEndPoint(), RyVec3(12, 5, 18));
    QCOMPARE(scene.lThigh->getEndPoint(), RyVec3(11, 50, 2));
    QCOMPARE(scene.rThigh->getOrigin(), RyVec3(-10, 95, 0));
    QCOMPARE(scene.lFoot->getOrigin(true), RyVec3(10, 8, -1));
    QCOMPARE(scene.tool->cachedOrigin(), RyVec3(12, 53, 7));
    scene.tool->setPropagateTranslation(false);
    scene.lShin->setOrigin({0, 0, 0});
    QCOMPARE(scene.lFoot->getOrigin(), RyVec3(11, 11, 4));
    QCOMPARE(scene.tool->cachedOrigin(), RyVec3(0, 0, 0));
    scene.tool->setPropagateTranslation(true);
    scene.lShin->getOriginYControl()->setValue(2.0f);
    QCOMPARE(scene.lFoot->getOrigin(), RyVec3(11, 13, 4));
}

void RyJointEditorToolFollowUpTest::propagationOnlyOutsideUndo()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.tool->setPropagateTranslation(true);
    const QString before = scene.dump();
    {
        RyUndoStackHold hold;
        scene.lShin->setOrigin({20, 60, -10});
        hold.accept(QStringLiteral("move"));
    }
    const QString after = scene.dump();
    QVERIFY(after != before);
    ryUndoStack()->undo();
    QCOMPARE(scene.dump(), before);
    QCOMPARE(scene.tool->cachedOrigin(), RyVec3(11, 50, 2));
    ryUndoStack()->redo();
    QCOMPARE(scene.dump(), after);
}

void RyJointEditorToolFollowUpTest::undoPropagatesNothing()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    {
        RyUndoStackHold hold;
        scene.lShin->setOrigin({20, 60, -10});
        hold.accept(QStringLiteral("move"));
    }
    // The step holds the node alone: whatever else moved now would have been propagated.
    scene.tool->setPropagateTranslation(true);
    ryUndoStack()->undo();
    QCOMPARE(scene.lShin->getOrigin(), RyVec3(11, 50, 2));
    QCOMPARE(scene.lShin->getEndPoint(), RyVec3(10, 8, -1));
    QCOMPARE(scene.lFoot->getOrigin(), RyVec3(10, 8, -1));
    QCOMPARE(scene.lFoot->getEndPoint(), RyVec3(11, 2, 13));
    ryUndoStack()->redo();
    QCOMPARE(scene.lShin->getOrigin(), RyVec3(20, 60, -10));
    QCOMPARE(scene.lShin->getEndPoint(), RyVec3(10, 8, -1));
    QCOMPARE(scene.lFoot->getOrigin(), RyVec3(10, 8, -1));
    QCOMPARE(scene.lFoot->getEndPoint(), RyVec3(11, 2, 13));
}

void RyJointEditorToolFollowUpTest::endPointPropagatesNothing()
{
    RyToolScene scene;
    scene.select(scene.lThigh);
    scene.tool->setPropagateTranslation(true);
    scene.lThigh->setEndPoint({0, 0, 0});
    QCOMPARE(scene.lShin->getOrigin(), RyVec3(11, 50, 2));
    QCOMPARE(scene.lFoot->getEndPoint(), RyVec3(11, 2, 13));
}

void RyJointEditorToolFollowUpTest::autoSnap()
{
    RyToolScene scene;
    scene.select(scene.lThigh);
    scene.lThigh->setOrigin({12, 95, 0});
    QCOMPARE(scene.hip->getEndPoint(), RyVec3(0, 112, 1));
    scene.tool->setAutoSnapEndPoints(true);
    QSignalSpy rigging(scene.hip, &RyNode::riggingChanged);
    scene.lThigh->setOrigin({14, 96, 4});
    // Mean of (14, 96, 4) and (-10, 95, 0).
    QCOMPARE(scene.hip->getEndPoint(), RyVec3(2, 95.5f, 2));
    QCOMPARE(scene.hip->getEndPoint(true), RyVec3(0, 112, 1));
    QCOMPARE(scene.hip->editLevel(), 0);
    QVERIFY(rigging.count() > 0);
    // An end point brings the follow-up too.
    scene.hip->setEndPoint({0, 0, 0});
    scene.lThigh->setEndPoint({11, 50, 3});
    QCOMPARE(scene.hip->getEndPoint(), RyVec3(2, 95.5f, 2));
}

void RyJointEditorToolFollowUpTest::autoSnapWithoutBones()
{
    RyToolScene scene;
    auto *holder = new RyNode;
    auto *child = new RyNode;
    holder->setEndPoint({1, 2, 3});
    holder->addNodeChild(child);
    ryScene()->addNode(holder);
    scene.select(child);
    scene.tool->setAutoSnapEndPoints(true);
    child->setOrigin({5, 5, 5});
    QCOMPARE(holder->getEndPoint(), RyVec3(0, 0, 0));
}

void RyJointEditorToolFollowUpTest::autoAlign()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.tool->setAutoAlign(true);
    scene.lShin->setOrigin({15, 52, 9});
    for (const RyBone *bone : {scene.lThigh, scene.lShin}) {
        QVERIFY(isAligned(*bone));
        QCOMPARE(bone->editLevel(), 0);
    }
    QCOMPARE(scene.lFoot->getOrientation(), RyQuat());
    QCOMPARE(scene.hip->getOrientation(), RyQuat());
}

void RyJointEditorToolFollowUpTest::autoAlignAfterPropagation()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.tool->setAutoAlign(true);
    scene.tool->setAutoSnapEndPoints(true);
    scene.tool->setPropagateTranslation(true);
    const QString before = scene.dump();
    {
        RyUndoStackHold hold;
        scene.lShin->setOrigin({35, 41, -19});
        hold.accept(QStringLiteral("move"));
    }
    const QString after = scene.dump();
    // The end point went along, and both bones point at their end points as they are now.
    QVERIFY((scene.lShin->getEndPoint() - RyVec3(34, -1, -22)).length() < 1e-4f);
    QCOMPARE(scene.lThigh->getEndPoint(), RyVec3(35, 41, -19));
    QVERIFY(isAligned(*scene.lShin));
    QVERIFY(isAligned(*scene.lThigh));
    ryUndoStack()->undo();
    QCOMPARE(scene.dump(), before);
    ryUndoStack()->redo();
    QCOMPARE(scene.dump(), after);
}

void RyJointEditorToolFollowUpTest::followUpNeedsAParent()
{
    RyToolScene scene;
    scene.select(scene.prop);
    scene.tool->setAutoAlign(true);
    scene.tool->setAutoSnapEndPoints(true);
    scene.prop->setEndPoint({0, 5, 0});
    QCOMPARE(scene.prop->getOrientation(), RyQuat());
}

RY_TEST(RyJointEditorToolFollowUpTest)

#include "tst_RyJointEditorToolFollowUp.moc"
