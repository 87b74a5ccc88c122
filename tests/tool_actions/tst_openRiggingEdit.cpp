#include "support/RyTest.h"

#include "RyUntidyScene.h"

#include "pluginsource/RyJointTools/ryjeaction/RyJEAlignActions.h"
#include "rycore/base/RyERCLink.h"
#include "rycore/scene/RyRiggingEdit.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <stdexcept>

/// The tool in rig edits that nest, end early, or end late, and after them.
class RyOpenRiggingEditTest : public QObject
{
    Q_OBJECT

private slots:
    void nextChangeStartsWhereTheEditEnded();
    void nestedEdits();
    void propagationWithinALargerEdit();
    void propagationElsewhereAfterAnEdit();
    void propagationThatIsHeardOf();
    void linkedPoints();
    void linkedToWhatFollows_data();
    void linkedToWhatFollows();
    void selectionChangesMeanwhile();
    void dragsInAnEdit_data();
    void dragsInAnEdit();
    void endPointDragIsOneEdit();
    void exceptionBringsTheModesBack();
    void leftOpenUntilTheSceneIsCleared();
    void undoWithinAnEdit();
};

void RyOpenRiggingEditTest::nextChangeStartsWhereTheEditEnded()
{
    RyUntidyScene scene(RyUntidyScene::Propagate);
    {
        const RyRiggingEdit edit;
        scene.lThigh->setOrigin({40, 50, 60});
    }
    QCOMPARE(scene.tool->cachedOrigin(), RyVec3(40, 50, 60));
    const RyVec3 foot = scene.lFoot->getEndPoint();
    scene.lThigh->setOrigin({41, 52, 63});
    QCOMPARE(scene.lFoot->getEndPoint(), foot + RyVec3(1, 2, 3));
}

void RyOpenRiggingEditTest::nestedEdits()
{
    RyUntidyScene scene(RyUntidyScene::AllModes);
    const RyUntidyScene::Values before = scene.values();
    {
        const RyRiggingEdit edit;
        {
            const RyRiggingEdit inner;
            scene.lThigh->setOrigin({20, 90, -8});
        }
        scene.lThigh->setOrigin({21, 91, -9});
        scene.lThigh->setEndPoint({20, 55, -8});
        QCOMPARE(int(scene.announced.size()), 0);
    }
    QCOMPARE(scene.changesSince(before), QStringList({"lThigh end", "lThigh origin"}));
    QCOMPARE(scene.announced, (QMap<QString, int>{{"lThigh", 1}}));
    scene.lThigh->setOrigin({20, 90, -8});
    QVERIFY(scene.changesSince(before).contains(QStringLiteral("hip end")));
}

void RyOpenRiggingEditTest::propagationWithinALargerEdit()
{
    RyUntidyScene scene(RyUntidyScene::AllModes);
    RyUntidyScene::Values expected = scene.values();
    {
        const RyRiggingEdit edit;
        scene.tool->performTransPropagation(scene.lThigh, {0, 0, 0}, {2, -3, 4});
        scene.tool->performTransPropagation(scene.lShin, 0, 5, true, false);
    }
    for (const QString &name : RyUntidyScene::belowThigh())
        expected[name] += RyVec3(2, -3, 4);
    for (const char *name : {"lShin end", "lFoot origin", "lFoot end"})
        expected[name] += RyVec3(5, 0, 0);
    QCOMPARE(scene.changesSince(expected), QStringList());
    QCOMPARE(scene.announced, (QMap<QString, int>{{"lThigh", 1}, {"lShin", 1}, {"lFoot", 1}}));
}

void RyOpenRiggingEditTest::propagationElsewhereAfterAnEdit()
{
    RyUntidyScene scene(RyUntidyScene::AllModes);
    {
        const RyRiggingEdit edit;
        scene.lThigh->setOrigin({20, 90, -8});
    }
    const RyUntidyScene::Values before = scene.values();
    scene.tool->performTransPropagation(scene.rThigh, {0, 0, 0}, {2, -3, 4});
    QCOMPARE(scene.changesSince(before), QStringList("rThigh end"));
}

void RyOpenRiggingEditTest::propagationThatIsHeardOf()
{
    // What follows a propagation comes although somebody who hears of it propagates something else.
    RyUntidyScene scene(RyUntidyScene::AllModes);
    QObject listener;
    connect(scene.lFoot, &RyNode::riggingChanged, &listener, [&] {
        scene.tool->performTransPropagation(scene.rThigh, {0, 0, 0}, {2, -3, 4});
    });
    const RyUntidyScene::Values before = scene.values();
    scene.tool->performTransPropagation(scene.lThigh, {0, 0, 0}, {2, -3, 4});
    QStringList changed =
        RyUntidyScene::belowThigh() + QStringList({"rThigh end", "hip end", "hip orient", "lThigh orient"});
    changed.sort();
    QCOMPARE(scene.changesSince(before), changed);
}

void RyOpenRiggingEditTest::linkedPoints()
{
    // An aligned bone whose orientation moves the tool's node: that is no move by hand, which others would follow.
    RyUntidyScene scene(RyUntidyScene::AllModes);
    QVERIFY(RyERCLink::create(scene.rThigh->getOrientZControl(), scene.lThigh->getOriginXControl()));
    const QString dump = scene.dump();
    const RyUntidyScene::Values before = scene.values();
    RyJEAlignAllBonesAction().trigger();
    QCOMPARE(scene.changesSince(before), QStringList({"hip orient", "lFoot orient", "lShin orient", "lThigh orient",
                                                      "lThigh origin", "rThigh orient"}));
    QCOMPARE(scene.tool->cachedOrigin(), scene.lThigh->getOrigin());
    const QString after = scene.dump();
    ryUndoStack()->undo();
    QCOMPARE(scene.dump(), dump);
    ryUndoStack()->redo();
    QCOMPARE(scene.dump(), after);
}

void RyOpenRiggingEditTest::linkedToWhatFollows_data()
{
    QTest::addColumn<int>("modes");
    QTest::newRow("the parent is aligned") << int(RyUntidyScene::Propagate | RyUntidyScene::Align);
    QTest::newRow("the parent is snapped as well") << int(RyUntidyScene::AllModes);
}

void RyOpenRiggingEditTest::linkedToWhatFollows()
{
    // Aligning the parent moves the node, after whose move the parent is aligned: that goes round once.
    QFETCH(int, modes);
    RyUntidyScene scene(modes);
    QVERIFY(RyERCLink::create(scene.hip->getOrientZControl(), scene.lThigh->getOriginXControl()));
    const RyVec3 origin = scene.lThigh->getOrigin();
    const RyVec3 foot = scene.lFoot->getEndPoint();
    scene.lThigh->getOriginYControl()->setValue(80.0f);
    const RyVec3 way = scene.lThigh->getOrigin() - origin;
    QVERIFY(std::abs(way.x) > 0.01f);
    QVERIFY(scene.lFoot->getEndPoint().y != foot.y);
    // Where the parent ends as before, aligning it again turns it no further.
    if (!(modes & RyUntidyScene::Snap))
        QVERIFY((scene.lFoot->getEndPoint() - foot - way).length() < 1e-4f);
}

void RyOpenRiggingEditTest::selectionChangesMeanwhile()
{
    RyUntidyScene scene(RyUntidyScene::AllModes);
    const RyUntidyScene::Values before = scene.values();
    {
        const RyRiggingEdit edit;
        scene.lShin->setOrigin({1, 2, 3});
        scene.select(scene.lShin);
        scene.lShin->setOrigin({4, 5, 6});
    }
    QCOMPARE(scene.tool->currentNode(), scene.lShin);
    QCOMPARE(scene.changesSince(before), QStringList("lShin origin"));
    const RyVec3 foot = scene.lFoot->getEndPoint();
    scene.lShin->setOrigin({5, 5, 6});
    QCOMPARE(scene.lFoot->getEndPoint(), foot + RyVec3(1, 0, 0));
}

void RyOpenRiggingEditTest::dragsInAnEdit_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("moved");
    QTest::newRow("origin") << 1 << "lThigh origin";
    QTest::newRow("end point") << 2 << "lThigh end";
}

void RyOpenRiggingEditTest::dragsInAnEdit()
{
    QFETCH(int, id);
    QFETCH(QString, moved);
    RyUntidyScene scene(RyUntidyScene::AllModes);
    const RyUntidyScene::Values before = scene.values();
    {
        const RyRiggingEdit edit;
        scene.drag(id, {400, 300}, {440, 330});
    }
    QCOMPARE(scene.changesSince(before), QStringList(moved));
    QCOMPARE(scene.announced, (QMap<QString, int>{{"lThigh", 1}}));
}

void RyOpenRiggingEditTest::endPointDragIsOneEdit()
{
    RyUntidyScene scene(RyUntidyScene::Propagate);
    scene.press(2, {400, 300});
    scene.move({410, 310});
    scene.announced.clear();
    scene.move({440, 330});
    QCOMPARE(scene.announced, (QMap<QString, int>{{"lShin", 1}, {"lFoot", 1}}));
    scene.release();
    QCOMPARE(scene.announced, (QMap<QString, int>{{"lThigh", 1}, {"lShin", 1}, {"lFoot", 1}}));
}

void RyOpenRiggingEditTest::exceptionBringsTheModesBack()
{
    RyUntidyScene scene(RyUntidyScene::AllModes);
    const QString before = scene.dump();
    try {
        RyUndoStackHold hold;
        const RyRiggingEdit edit;
        scene.lThigh->setOrigin({40, 50, 60});
        scene.hip->setOrigin({4, 5, 6});
        throw std::runtime_error("in the middle");
    } catch (const std::runtime_error &) {
    }
    QCOMPARE(scene.dump(), before);
    QCOMPARE(ryUndoStack()->count(), 0);
    const RyUntidyScene::Values values = scene.values();
    scene.lThigh->setOrigin({20, 90, -8});
    QStringList expected =
        RyUntidyScene::belowThigh() + QStringList({"hip end", "hip orient", "lThigh orient", "lThigh origin"});
    expected.sort();
    QCOMPARE(scene.changesSince(values), expected);
}

void RyOpenRiggingEditTest::leftOpenUntilTheSceneIsCleared()
{
    RyUntidyScene scene(RyUntidyScene::AllModes);
    ryScene()->beginRiggingEdit();
    scene.lThigh->setOrigin({40, 50, 60});
    const RyUntidyScene::Values before = scene.values();
    scene.drag(1, {400, 300}, {440, 330});
    scene.tool->performTransPropagation(scene.lShin, 0, 5, true, false);
    QStringList changed{"lThigh origin", "lShin end", "lFoot origin", "lFoot end"};
    changed.sort();
    QCOMPARE(scene.changesSince(before), changed);
    ryScene()->clear();
    QCoreApplication::sendPostedEvents();

    auto *figure = new RyFigure;
    RyBone *upper = RyToolScene::makeBone(figure, "upper", {0, 50, 0}, {3, 30, 1});
    RyBone *lower = RyToolScene::makeBone(upper, "lower", {1, 28, 2}, {0, 8, -1});
    RyBone *tip = RyToolScene::makeBone(lower, "tip", {2, 9, 1}, {3, 1, -1});
    ryScene()->addNode(figure);
    scene.select(lower);
    lower->setOrigin({4, 29, 0});
    QCOMPARE(upper->getEndPoint(), RyVec3(4, 29, 0));
    QCOMPARE(tip->getOrigin(), RyVec3(5, 10, -1));
    QVERIFY(lower->getOrientation() != RyQuat());
}

void RyOpenRiggingEditTest::undoWithinAnEdit()
{
    RyUntidyScene scene(RyUntidyScene::AllModes);
    const QString before = scene.dump();
    {
        RyUndoStackHold hold;
        scene.lThigh->setOrigin({20, 90, -8});
        hold.accept(QStringLiteral("Move"));
    }
    const QString after = scene.dump();
    {
        const RyRiggingEdit edit;
        ryUndoStack()->undo();
        QCOMPARE(scene.dump(), before);
    }
    QCOMPARE(scene.dump(), before);
    QCOMPARE(scene.tool->cachedOrigin(), scene.lThigh->getOrigin());
    ryUndoStack()->redo();
    QCOMPARE(scene.dump(), after);
}

RY_TEST(RyOpenRiggingEditTest)

#include "tst_openRiggingEdit.moc"
