#include "support/RyTest.h"

#include "RyPlainVec.h"
#include "RyToolScene.h"

#include <random>

/// What goes along with a drag of a point: bones below, and the modes that align and snap.
class RyPointDragFollowUpTest : public QObject
{
    Q_OBJECT

private slots:
    void noDriftWithPropagation();
    void propagatesEndPoint();
    void propagationIsOneStep();
    void cancelRestoresDescendants();
    void autoModesJoinTheStep_data();
    void autoModesJoinTheStep();
    void allModesTogether_data();
    void allModesTogether();
};

void RyPointDragFollowUpTest::noDriftWithPropagation()
{
    RyToolScene scene;
    scene.pose();
    scene.tool->setPropagateTranslation(true);
    scene.select(scene.lThigh);
    const RyVec3 start = scene.lThigh->getOrigin();
    const RyVec3 foot = scene.lFoot->getEndPoint();
    std::mt19937 random(ryTestSeed());
    scene.press(1, {400, 300});
    for (int i = 0; i < 500; ++i)
        scene.move(QPoint(int(random() % 800), int(random() % 600)));
    const RyVec3 way = scene.lThigh->getOrigin() - start;
    QVERIFY(distance(toVec(scene.lFoot->getEndPoint() - foot), toVec(way)) < 1e-4);
    scene.move({400, 300});
    QCOMPARE(scene.lFoot->getEndPoint(), foot);
    scene.release();
}

void RyPointDragFollowUpTest::propagatesEndPoint()
{
    for (int id : {2, 44, 45, 46}) {
        RyToolScene scene;
        scene.tool->setPropagateTranslation(true);
        scene.select(scene.lThigh);
        scene.drag(id, {400, 300}, {440, 330});
        const RyVec3 way = scene.lThigh->getEndPoint() - RyVec3(11, 50, 2);
        QVERIFY(way.length() > 0.1f);
        QCOMPARE(scene.lThigh->getOrigin(), RyVec3(10, 95, 0));
        QCOMPARE(scene.lShin->getOrigin(), RyVec3(11, 50, 2) + way);
        QCOMPARE(scene.lShin->getEndPoint(), RyVec3(10, 8, -1) + way);
        QCOMPARE(scene.lFoot->getOrigin(), RyVec3(10, 8, -1) + way);
        QCOMPARE(scene.lFoot->getEndPoint(), RyVec3(11, 2, 13) + way);
        QCOMPARE(scene.rThigh->getOrigin(), RyVec3(-10, 95, 0));
        QCOMPARE(scene.lFoot->getOrigin(true), RyVec3(10, 8, -1));
    }
}

void RyPointDragFollowUpTest::propagationIsOneStep()
{
    RyToolScene scene;
    scene.pose();
    scene.tool->setPropagateTranslation(true);
    for (int id : {1, 2, 42, 45}) {
        scene.select(scene.lThigh);
        ryUndoStack()->clearAll();
        const QString before = scene.dump();
        scene.drag(id, {400, 300}, {440, 330});
        const QString after = scene.dump();
        QVERIFY(scene.lFoot->getEndPoint() != RyVec3(11, 2, 13));
        QCOMPARE(ryUndoStack()->count(), 1);
        ryUndoStack()->undo();
        QCOMPARE(scene.dump(), before);
        ryUndoStack()->redo();
        QCOMPARE(scene.dump(), after);
        ryUndoStack()->undo();
    }
}

void RyPointDragFollowUpTest::cancelRestoresDescendants()
{
    RyToolScene scene;
    scene.pose();
    scene.tool->setPropagateTranslation(true);
    scene.tool->setAutoSnapEndPoints(true);
    scene.tool->setAutoAlign(true);
    scene.select(scene.lThigh);
    for (int id : {1, 2, 41, 46}) {
        const QString before = scene.dump();
        scene.press(id, {400, 300});
        scene.move({440, 330});
        scene.move({470, 350});
        QVERIFY(scene.dump() != before);
        scene.press(id, {470, 350}, Qt::RightButton);
        QCOMPARE(scene.dump(), before);
        QCOMPARE(ryUndoStack()->count(), 0);
        for (RyNode *node : ryScene()->getNodesInTreeOrder())
            QCOMPARE(node->editLevel(), 0);
    }
}

void RyPointDragFollowUpTest::autoModesJoinTheStep_data()
{
    QTest::addColumn<bool>("snap");
    QTest::addColumn<bool>("align");
    QTest::newRow("snap") << true << false;
    QTest::newRow("align") << false << true;
    QTest::newRow("both") << true << true;
}

void RyPointDragFollowUpTest::autoModesJoinTheStep()
{
    QFETCH(bool, snap);
    QFETCH(bool, align);
    RyToolScene scene;
    scene.tool->setAutoSnapEndPoints(snap);
    scene.tool->setAutoAlign(align);
    scene.select(scene.lThigh);
    const QString before = scene.dump();
    scene.drag(1, {400, 300}, {440, 330});
    const QString after = scene.dump();
    if (snap) {
        const RyVec3 mean = (scene.lThigh->getOrigin() + scene.rThigh->getOrigin()) / 2.0f;
        QVERIFY(distance(toVec(scene.hip->getEndPoint()), toVec(mean)) < 1e-5);
    } else {
        QCOMPARE(scene.hip->getEndPoint(), RyVec3(0, 112, 1));
    }
    QCOMPARE(scene.hip->getOrientation() != RyQuat(), align);
    QCOMPARE(scene.lThigh->getOrientation() != RyQuat(), align);
    QCOMPARE(ryUndoStack()->count(), 1);
    ryUndoStack()->undo();
    QCOMPARE(scene.dump(), before);
    ryUndoStack()->redo();
    QCOMPARE(scene.dump(), after);
}

void RyPointDragFollowUpTest::allModesTogether_data()
{
    QTest::addColumn<int>("id");
    for (int id : {1, 2, 41, 42, 43, 44, 45, 46})
        QTest::addRow("%d", id) << id;
}

void RyPointDragFollowUpTest::allModesTogether()
{
    QFETCH(int, id);
    RyToolScene scene;
    scene.pose();
    scene.tool->setPropagateTranslation(true);
    scene.tool->setAutoSnapEndPoints(true);
    scene.tool->setAutoAlign(true);
    scene.select(scene.lThigh);
    const QString before = scene.dump();
    const RyVec3 origin = scene.lThigh->getOrigin();
    const RyVec3 endPoint = scene.lThigh->getEndPoint();
    scene.drag(id, {400, 300}, {440, 330});
    const QString after = scene.dump();
    const bool ofOrigin = id == 1 || (id >= 41 && id <= 43);
    const RyVec3 way = ofOrigin ? scene.lThigh->getOrigin() - origin : scene.lThigh->getEndPoint() - endPoint;
    QVERIFY(way.length() > 0.1f);
    QVERIFY(distance(toVec(scene.lThigh->getEndPoint()), toVec(endPoint + way)) < 1e-4);
    QVERIFY(distance(toVec(scene.lFoot->getEndPoint()), toVec(RyVec3(11, 2, 13) + way)) < 1e-4);
    const RyVec3 mean = (scene.lThigh->getOrigin() + scene.rThigh->getOrigin()) / 2.0f;
    QVERIFY(distance(toVec(scene.hip->getEndPoint()), toVec(mean)) < 1e-5);
    for (const RyBone *bone : {scene.hip, scene.lThigh}) {
        const Vec direction = unit(toVec(bone->getEndPoint() - bone->getOrigin()));
        const Vec axis = toVec(bone->getOrientation().multVec(RyVec3(1, 0, 0)));
        QVERIFY2(std::abs(std::abs(dot(axis, direction)) - 1.0) < 1e-6, qPrintable(bone->getName()));
    }
    QCOMPARE(ryUndoStack()->count(), 1);
    for (int i = 0; i < 2; ++i) {
        ryUndoStack()->undo();
        QCOMPARE(scene.dump(), before);
        ryUndoStack()->redo();
        QCOMPARE(scene.dump(), after);
    }
}

RY_TEST(RyPointDragFollowUpTest)

#include "tst_RyPointDragFollowUp.moc"
