#include "support/RyTest.h"

#include "RyFilledBoneDialog.h"
#include "RyMessageBoxes.h"
#include "RySkinnedScene.h"

#include "pluginsource/RyJointTools/operations/createBoneAtClick.h"
#include "pluginsource/RyJointTools/operations/createChildBone.h"
#include "pluginsource/RyJointTools/operations/createSiblingBone.h"
#include "pluginsource/RyJointTools/operations/deleteBone.h"
#include "pluginsource/RyJointTools/operations/reparentBone.h"
#include "pluginsource/RyJointTools/operations/splitBone.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEDeleteActions.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/math/RyLine3.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <array>

namespace {

using Pose = std::array<float, 10>;

Pose poseOf(const RyNode *node)
{
    return {node->getXTransControl()->getValue(), node->getYTransControl()->getValue(),
            node->getZTransControl()->getValue(), node->getXRotControl()->getValue(),
            node->getYRotControl()->getValue(),   node->getZRotControl()->getValue(),
            node->getScaleControl()->getValue(),  node->getXScaleControl()->getValue(),
            node->getYScaleControl()->getValue(), node->getZScaleControl()->getValue()};
}

const Pose rest = {0, 0, 0, 0, 0, 0, 1, 1, 1, 1};

/// A figure that stands elsewhere, turned and scaled, with bones that are bent, moved and scaled.
struct PosedScene : RySkinnedScene
{
    PosedScene()
    {
        pose();
        figure->getScaleControl()->setValue(1.4f);
        lThigh->getXTransControl()->setValue(4.0f);
        lThigh->getScaleControl()->setValue(0.8f);
        lShin->getZScaleControl()->setValue(1.2f);
        lFoot->getYTransControl()->setValue(-3.0f);
        rThigh->getZRotControl()->setValue(33.0f);
    }
};

} // namespace

/// Bones that come, go and move in posed figures: what is relative to a parent stays as it is.
class RyPosedStructureTest : public QObject
{
    Q_OBJECT

private slots:
    void newBonesAreNotPosed();
    void newBonesStandWhereTheParentHoldsThem();
    void splitMovesChildrenAsTheyAre();
    void deletingMovesChildrenAsTheyAre();
    void reparentedBonesKeepTheirPose();
    void creationIsNotRecorded();
    void deletionIsNotRecorded();
};

void RyPosedStructureTest::newBonesAreNotPosed()
{
    PosedScene scene;
    for (RyNode *parent : {static_cast<RyNode *>(scene.lShin), static_cast<RyNode *>(scene.figure)}) {
        const Pose before = poseOf(parent);
        QCOMPARE(poseOf(createChildBone(parent, QStringLiteral("child"), QStringLiteral("Child"), RyRotationOrder(3))),
                 rest);
        QCOMPARE(poseOf(createBoneAtClick(parent, RyLine3(RyVec3(10, 40, 200), RyVec3(12, 38, 0)), RyQuat())), rest);
        QCOMPARE(poseOf(parent), before);
    }
    QCOMPARE(poseOf(splitBone(scene.lShin)), rest);
    const Pose thigh = poseOf(scene.lThigh);
    QCOMPARE(poseOf(createSiblingBone(scene.lThigh)), thigh);
    QCOMPARE(poseOf(scene.lThigh), thigh);
}

void RyPosedStructureTest::newBonesStandWhereTheParentHoldsThem()
{
    PosedScene scene;
    const RyVec3 tip = scene.lFoot->getWSEndPoint();
    const RyBone *child =
        createChildBone(scene.lFoot, QStringLiteral("child"), QStringLiteral("Child"), RyRotationOrder(1));
    QVERIFY((child->getWSPos() - tip).length() < 1e-3f);
    const RyVec3 middle =
        scene.lShin->getWSTransform().multVecMatrix((scene.lShin->getEndPoint() - scene.lShin->getOrigin()) / 2.0f);
    const RyBone *outer = splitBone(scene.lShin);
    QVERIFY((outer->getWSPos() - middle).length() < 1e-3f);
    QVERIFY((scene.lShin->getWSEndPoint() - middle).length() < 1e-3f);
}

void RyPosedStructureTest::splitMovesChildrenAsTheyAre()
{
    PosedScene scene;
    const Pose foot = poseOf(scene.lFoot);
    const Pose shin = poseOf(scene.lShin);
    QVERIFY(splitBone(scene.lShin) == scene.lFoot->getNodeParent());
    QCOMPARE(poseOf(scene.lFoot), foot);
    QCOMPARE(poseOf(scene.lShin), shin);
}

void RyPosedStructureTest::deletingMovesChildrenAsTheyAre()
{
    PosedScene scene;
    const Pose shin = poseOf(scene.lShin);
    const Pose foot = poseOf(scene.lFoot);
    const RyRef<RyBone> held(scene.lThigh);
    const Pose thigh = poseOf(scene.lThigh);
    deleteBone(scene.lThigh);
    QCOMPARE(scene.lShin->getNodeParent(), static_cast<RyNode *>(scene.hip));
    QCOMPARE(poseOf(scene.lShin), shin);
    QCOMPARE(poseOf(scene.lFoot), foot);
    QCOMPARE(poseOf(held), thigh);
    QVERIFY(!held->getNodeParent());
}

void RyPosedStructureTest::reparentedBonesKeepTheirPose()
{
    PosedScene scene;
    const Pose shin = poseOf(scene.lShin);
    for (RyNode *parent :
         {static_cast<RyNode *>(scene.rThigh), static_cast<RyNode *>(scene.rThigh), static_cast<RyNode *>(scene.figure),
          static_cast<RyNode *>(nullptr), static_cast<RyNode *>(scene.lThigh)}) {
        reparentBone(scene.lShin, parent);
        QCOMPARE(scene.lShin->getNodeParent(), parent);
        QCOMPARE(poseOf(scene.lShin), shin);
    }
}

void RyPosedStructureTest::creationIsNotRecorded()
{
    PosedScene scene;
    ryScene()->setSelection({scene.lShin});
    RyFilledBoneDialog dialog;
    dialog.fill(QStringLiteral("spur"), QStringLiteral("Spur"));
    QStringList locks;
    connect(ryScene(), &RyScene::nodeAdded, &dialog,
            [&] { locks.append(ryUndoStack()->isLocked() ? "locked" : "recorded"); });
    RyUndoStackHold hold;
    QVERIFY(dialog.accepts());
    hold.accept(QStringLiteral("Around it"));
    QCOMPARE(locks, QStringList({"locked"}));
    QVERIFY(!ryUndoStack()->isLocked());
    const QString made = scene.dump();
    QVERIFY(ryScene()->findNode(QStringLiteral("spur")));
    while (ryUndoStack()->canUndo())
        ryUndoStack()->undo();
    QCOMPARE(scene.dump(), made);
}

void RyPosedStructureTest::deletionIsNotRecorded()
{
    PosedScene scene;
    ryScene()->setSelection({scene.lShin});
    QStringList locks;
    QObject listener;
    connect(ryScene(), &RyScene::nodeRemoved, &listener,
            [&] { locks.append(ryUndoStack()->isLocked() ? "locked" : "recorded"); });
    RyUndoStackHold hold;
    RyJEDeleteBoneAction().executeAction();
    hold.accept(QStringLiteral("Around it"));
    QCOMPARE(locks, QStringList({"locked"}));
    QVERIFY(!ryUndoStack()->isLocked());
    const QString left = scene.dump();
    QVERIFY(!ryScene()->findNode(QStringLiteral("lShin")));
    while (ryUndoStack()->canUndo())
        ryUndoStack()->undo();
    QCOMPARE(scene.dump(), left);
}

RY_TEST(RyPosedStructureTest)

#include "tst_posedStructure.moc"
