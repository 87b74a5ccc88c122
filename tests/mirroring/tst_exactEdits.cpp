#include "support/RyTest.h"

#include "RySidedScene.h"

#include "pluginsource/RyJointTools/operations/alignNode.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJERiggingActions.h"
#include "rycore/base/RyERCLink.h"
#include "rycore/figure/RySymmetricEditing.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/checkUndo.h"

namespace {

/// The sided figure, whose hip stands in the plane by default and beside it as it is, while symmetric editing is on.
/// Tests say what a command does with it off.
struct FollowedScene : RySidedScene
{
    FollowedScene()
    {
        hip->setOrigin({0, 101, -3}, true);
        hip->setEndPoint({0, 110, -1}, true);
        hip->getOriginXControl()->setValue(1.5f);
        editing().setOn(true);
        follow();
        ryUndoStack()->clearAll();
    }
    ~FollowedScene() { editing().setOn(false); }
    static RySymmetricEditing &editing() { return RySymmetricEditing::of(*ryScene()); }

    /// Bones are paired, and an edit of one side reaches the other.
    void follow()
    {
        RyUndoStackHold hold;
        lFoot->getEndXControl()->setValue(4.5f);
        hold.accept("Edit");
        QCOMPARE(rFoot->getEndPoint().x, -4.5f);
    }
    /// The scene after a command without symmetric editing, which is taken back.
    template<typename Command>
    QString dumpOfUnfollowed(const Command &command)
    {
        editing().setOn(false);
        command();
        const QString after = dump();
        ryUndoStack()->undo();
        editing().setOn(true);
        return after;
    }
};

template<typename Action>
void runAction()
{
    Action action;
    action.init();
    action.executeAction();
}

} // namespace

/// Commands that mean what they place, of one side or both, while symmetric editing is on.
class RyExactEditsTest : public QObject
{
    Q_OBJECT

private slots:
    void restoresOneSide();
    void restoresTheFigure();
    void memorizesALinkedSide();
    void transferLands();
    void alignsBothSides();
};

void RyExactEditsTest::restoresOneSide()
{
    FollowedScene scene;
    for (RyNode *node : {static_cast<RyNode *>(scene.lShin), static_cast<RyNode *>(scene.hip)}) {
        ryScene()->setSelection({node});
        const auto values = scene.values();
        const QString before = scene.dump();
        const int steps = ryUndoStack()->count();
        runAction<RyJERestoreNodeRiggingPropertiesAction>();
        QCOMPARE(scene.changedSince(values), node->getName());
        for (const RyFloatProperty *control : riggingOf(node))
            QCOMPARE(control->getValue(), control->getDefaultValue());
        QCOMPARE(ryUndoStack()->count(), steps + 1);
        checkLastStep(before);
    }
    // Without the command it follows as before.
    scene.follow();
}

/// With one side at its defaults already, so that only the other one is written.
void RyExactEditsTest::restoresTheFigure()
{
    FollowedScene scene;
    ryScene()->setSelection({scene.rThigh, scene.rShin, scene.rFoot});
    runAction<RyJERestoreNodeRiggingPropertiesAction>();
    const QString before = scene.dump();
    runAction<RyJERestoreFigureRiggingPropertiesAction>();
    for (const RyNode *node : scene.bones()) {
        for (const RyFloatProperty *control : riggingOf(node))
            QCOMPARE(control->getValue(), control->getDefaultValue());
    }
    checkLastStep(before);
}

/// Defaults that are written move what hangs on their values, until these are put right.
void RyExactEditsTest::memorizesALinkedSide()
{
    FollowedScene scene;
    QVERIFY(RyERCLink::create(scene.lThigh->getOriginXControl(), scene.lShin->getOriginXControl()));
    ryUndoStack()->clearAll();
    ryScene()->setSelection({scene.lThigh, scene.lShin});
    for (const RyNode *node : {scene.lThigh, scene.lShin})
        node->getOriginXControl()->setValue(node->getOriginXControl()->getValue() + 2.0f);
    const auto values = scene.values();
    const QString before = scene.dump();
    runAction<RyJEMemorizeNodeRiggingPropertiesAction>();
    QCOMPARE(scene.changedSince(values), QStringLiteral("lThigh lShin"));
    for (const RyNode *node : {scene.lThigh, scene.lShin})
        QCOMPARE(node->getOrigin(true), node->getOrigin());
    checkLastStep(before);
}

/// From a figure whose sides have little in common and whose hip is beside the plane.
void RyExactEditsTest::transferLands()
{
    for (const bool isOneSided : {false, true}) {
        FollowedScene scene;
        auto *source = new RyFigure;
        source->setName("source");
        RyBone *hip = RyToolScene::makeBone(source, "hip", {3, 90, 1}, {2, 108, -2});
        RyBone *lThigh = RyToolScene::makeBone(hip, "lThigh", {9, 80, 2}, {12, 44, 1});
        RyToolScene::makeBone(lThigh, "lShin", {12, 43, 1}, {13, 5, -1});
        if (!isOneSided)
            RyToolScene::makeBone(hip, "rThigh", {-14, 85, 0}, {-11, 40, 6});
        ryScene()->addNode(source);
        hip->setOrientation(RyQuat({1, 2, 3}, 0.3f), true);
        lThigh->getXRotControl()->setValue(-25.0f);
        source->getYRotControl()->setValue(70.0f);
        ryScene()->setSelection({source, scene.figure});
        ryUndoStack()->clearAll();
        const auto transfer = [] { runAction<RyJETransferWSRiggingAction>(); };
        const QString wanted = scene.dumpOfUnfollowed(transfer);
        const QString before = scene.dump();
        QVERIFY(wanted != before);
        transfer();
        QCOMPARE(scene.dump(), wanted);
        QCOMPARE(scene.hip->getOrigin(), RyVec3(3, 90, 1));
        QCOMPARE(ryUndoStack()->count(), 1);
        checkLastStep(before);
    }
}

/// Where one side is aligned already and the other one is not.
void RyExactEditsTest::alignsBothSides()
{
    FollowedScene scene;
    scene.editing().setOn(false);
    for (RyNode *node : {scene.rThigh, scene.rShin, scene.rFoot, scene.jaw})
        alignNode(node);
    scene.editing().setOn(true);
    ryUndoStack()->clearAll();
    const auto align = [&] {
        RyUndoStackHold hold;
        alignAllBones(*scene.figure);
        hold.accept("Align");
    };
    const QString wanted = scene.dumpOfUnfollowed(align);
    const QString before = scene.dump();
    align();
    QCOMPARE(scene.dump(), wanted);
    checkLastStep(before);
}

RY_TEST(RyExactEditsTest)
#include "tst_exactEdits.moc"
