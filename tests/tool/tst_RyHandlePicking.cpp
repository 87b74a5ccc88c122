#include "support/RyTest.h"

#include "RyToolScene.h"

#include "rycore/viewport/RyDrawStyle.h"

#include <QSignalSpy>

/// A drag of the shin is over, and neither moving on nor letting go leaves anything.
static void expectCancelled(RyToolScene &scene, const QString &before)
{
    QCOMPARE(scene.dump(), before);
    QVERIFY(!scene.tool->isDragging());
    QVERIFY(!ryUndoStack()->isHoldOpen());
    QCOMPARE(scene.lShin->editLevel(), 0);
    QVERIFY(!scene.move({500, 300}));
    scene.release();
    QCOMPARE(ryUndoStack()->count(), 0);
    QCOMPARE(scene.dump(), before);
}

/// Press and release with scripted picks.
class RyHandlePickingTest : public QObject
{
    Q_OBJECT

private slots:
    void pressHandle();
    void pressNothing();
    void pressWithoutNode();
    void pressBone();
    void pressOwnOrMissingBone();
    void pressBoneIsNoDrag();
    void pressOnRemovedBone();
    void rightPressIdle();
    void rightPressCancels();
    void cancelDrag();
    void releaseAccepts();
    void lostRelease();
    void lostReleaseOfAPress();
    void pressAfterLostRelease();
    void releaseWithoutHandle();
    void pressAndReleaseLeavesNothing();
    void oneHoldOnly();
    void idleHandleStillMakesAStep();
    void rememberedViewport();
    void moveWithoutHandle();
};

void RyHandlePickingTest::pressHandle()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    QVERIFY(scene.press(45, {400, 300}));
    QCOMPARE(scene.tool->hoveredId(), 45);
    QVERIFY(!scene.tool->isDragging());
    QVERIFY(!ryUndoStack()->isHoldOpen());
    QCOMPARE(scene.viewport->nodePicks, 0);
}

void RyHandlePickingTest::pressNothing()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.viewport->nextNode = scene.prop;
    QVERIFY(scene.press(0, {400, 300}));
    QCOMPARE(scene.viewport->nodePicks, 1);
    QCOMPARE(ryScene()->getPrimarySelection(), scene.prop);
    scene.viewport->nextNode = nullptr;
    QVERIFY(!scene.press(0, {400, 300}));
}

void RyHandlePickingTest::pressWithoutNode()
{
    for (int id : {0, 44, 48}) {
        RyToolScene scene;
        scene.manager->setActiveTool(scene.tool);
        scene.viewport->nextNode = scene.prop;
        QVERIFY(scene.press(id, {400, 300}));
        QCOMPARE(scene.tool->hoveredId(), id);
        QCOMPARE(scene.viewport->nodePicks, 1);
        QCOMPARE(ryScene()->getPrimarySelection(), scene.prop);
    }
}

/// Bones get their ids in a pick pass; without a GL picture the list is filled by the same drawing call.
static void runPickPass(RyToolScene &scene)
{
    scene.tool->draw(scene.viewport.get(), RyDrawStyle(RyDrawStyle::PickPass));
}

void RyHandlePickingTest::pressBone()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    runPickPass(scene);
    QVERIFY(scene.press(47, {400, 300})); // hip
    QCOMPARE(ryScene()->selectedNodeListIterator(), std::vector<RyNode *>{scene.hip});
    QCoreApplication::processEvents();
    QCOMPARE(scene.tool->currentNode(), static_cast<RyNode *>(scene.hip));
    QVERIFY(scene.press(50, {400, 300}, Qt::LeftButton, Qt::ControlModifier)); // lFoot
    QCOMPARE(ryScene()->selectedNodeListIterator(), (std::vector<RyNode *>{scene.hip, scene.lFoot}));
    QVERIFY(scene.press(51, {400, 300}, Qt::LeftButton, Qt::ShiftModifier)); // rThigh, alone
    QCOMPARE(ryScene()->selectedNodeListIterator(), std::vector<RyNode *>{scene.rThigh});
    QCOMPARE(ryUndoStack()->count(), 0);
}

void RyHandlePickingTest::pressOwnOrMissingBone()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    runPickPass(scene);
    for (int id : {49, 52, 300}) { // itself, and two beyond the list
        QVERIFY(scene.press(id, {400, 300}));
        QCOMPARE(ryScene()->selectedNodeListIterator(), std::vector<RyNode *>{scene.lShin});
        QCOMPARE(scene.viewport->nodePicks, 0);
        scene.release();
    }
}

void RyHandlePickingTest::pressBoneIsNoDrag()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    runPickPass(scene);
    scene.hover(48);
    scene.press(48, {400, 300});
    QCOMPARE(scene.tool->hoveredId(), 0);
    QVERIFY(!scene.move({404, 300}));
    QVERIFY(!scene.tool->isDragging());
    QVERIFY(!ryUndoStack()->isHoldOpen());
    scene.release();
    QCOMPARE(ryUndoStack()->count(), 0);
}

void RyHandlePickingTest::pressOnRemovedBone()
{
    RyToolScene scene;
    scene.select(scene.hip);
    runPickPass(scene);
    ryScene()->removeNode(scene.lFoot); // frees it: nothing records
    QVERIFY(scene.press(50, {400, 300}));
    QCOMPARE(ryScene()->selectedNodeListIterator(), std::vector<RyNode *>{scene.hip});
}

void RyHandlePickingTest::rightPressIdle()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    const QString before = scene.dump();
    scene.hover(44);
    QVERIFY(!scene.press(44, {400, 300}, Qt::RightButton));
    QCOMPARE(scene.tool->hoveredId(), 44);
    QVERIFY(!scene.tool->isDragging());
    QCOMPARE(ryUndoStack()->count(), 0);
    QCOMPARE(scene.dump(), before);
}

void RyHandlePickingTest::rightPressCancels()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    const QString before = scene.dump();
    scene.press(44, {400, 300});
    scene.move({450, 310});
    QVERIFY(scene.dump() != before);
    QVERIFY(scene.tool->isDragging());
    scene.viewport->nextId = 44;
    QMouseEvent event(QEvent::MouseButtonPress, QPoint(450, 310), Qt::RightButton, Qt::LeftButton | Qt::RightButton,
                      Qt::NoModifier);
    event.ignore();
    QVERIFY(!scene.tool->mousePress(scene.viewport.get(), &event, RyViewMouseModifier::None));
    QVERIFY(event.isAccepted());
    QCOMPARE(scene.tool->hoveredId(), 0);
    expectCancelled(scene, before);
}

void RyHandlePickingTest::cancelDrag()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    const QString before = scene.dump();
    // Neither a hovered nor a pressed handle is a drag.
    scene.hover(44);
    scene.tool->cancelDrag();
    QCOMPARE(scene.tool->hoveredId(), 44);
    scene.press(44, {400, 300});
    scene.tool->cancelDrag();
    QVERIFY(scene.move({450, 310}));
    QVERIFY(scene.dump() != before);
    const int picks = scene.viewport->gizmoPicks;
    scene.tool->cancelDrag();
    QCOMPARE(scene.viewport->gizmoPicks, picks);
    QCOMPARE(scene.dump(), before);
    QCOMPARE(scene.tool->hoveredId(), 0);
    QCOMPARE(scene.viewport->toolTip, QString());
    expectCancelled(scene, before);
}

void RyHandlePickingTest::releaseAccepts()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    QSignalSpy rigging(scene.lShin, &RyNode::riggingChanged);
    const QString before = scene.dump();
    scene.press(44, {400, 300});
    QVERIFY(scene.move({450, 310}));
    QVERIFY(scene.move({460, 310}));
    QCOMPARE(scene.lShin->editLevel(), 1);
    QCOMPARE(rigging.count(), 0);
    QVERIFY(scene.release());
    QCOMPARE(rigging.count(), 1);
    QCOMPARE(scene.lShin->editLevel(), 0);
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Joint Edit"));
    QVERIFY(!scene.tool->isDragging());
    QCOMPARE(scene.tool->hoveredId(), 0);
    const QString after = scene.dump();
    QVERIFY(after != before);
    ryUndoStack()->undo();
    QCOMPARE(scene.dump(), before);
    ryUndoStack()->redo();
    QCOMPARE(scene.dump(), after);
}

void RyHandlePickingTest::lostRelease()
{
    for (int next : {0, 42, 48}) {
        RyToolScene scene;
        scene.select(scene.lShin);
        const QString before = scene.dump();
        scene.press(44, {400, 300});
        scene.move({450, 310});
        const QString dragged = scene.dump();
        QVERIFY(dragged != before);
        scene.tool->finishDrag();
        QCOMPARE(scene.tool->hoveredId(), 0);
        QCOMPARE(scene.viewport->toolTip, QString());
        scene.hover(next);
        QVERIFY(!scene.tool->isDragging());
        QVERIFY(!ryUndoStack()->isHoldOpen());
        QCOMPARE(scene.lShin->editLevel(), 0);
        QCOMPARE(ryUndoStack()->count(), 1);
        QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Joint Edit"));
        QCOMPARE(scene.dump(), dragged);
        QCOMPARE(scene.tool->hoveredId(), next);
        QVERIFY(!scene.tool->pressViewport());

        // The next drag is one of its own.
        scene.drag(45, {400, 300}, {400, 340});
        QCOMPARE(ryUndoStack()->count(), 2);
        ryUndoStack()->undo();
        QCOMPARE(scene.dump(), dragged);
        ryUndoStack()->undo();
        QCOMPARE(scene.dump(), before);
    }
}

void RyHandlePickingTest::lostReleaseOfAPress()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.press(44, {400, 300});
    QVERIFY(scene.tool->pressViewport());
    scene.tool->finishDrag();
    QVERIFY(!scene.tool->pressViewport());
    QCOMPARE(scene.tool->hoveredId(), 0);
    QVERIFY(!scene.move({450, 310}));
    scene.release();
    QCOMPARE(scene.lShin->getEndPoint(), RyVec3(10, 8, -1));
    QCOMPARE(ryUndoStack()->count(), 0);
}

void RyHandlePickingTest::pressAfterLostRelease()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.press(44, {400, 300});
    scene.move({450, 310});
    const RyVec3 dragged = scene.lShin->getEndPoint();
    scene.tool->finishDrag();
    QVERIFY(scene.press(42, {400, 300}));
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(scene.tool->hoveredId(), 42);
    QVERIFY(!scene.tool->isDragging());
    scene.move({400, 340});
    QCOMPARE(scene.lShin->getEndPoint(), dragged);
    QVERIFY(scene.lShin->getOrigin() != RyVec3(11, 50, 2));
    scene.release();
    QCOMPARE(ryUndoStack()->count(), 2);
}

void RyHandlePickingTest::releaseWithoutHandle()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.press(0, {400, 300});
    QVERIFY(!scene.release());
    QCOMPARE(ryUndoStack()->count(), 0);
}

void RyHandlePickingTest::pressAndReleaseLeavesNothing()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    QSignalSpy rigging(scene.lShin, &RyNode::riggingChanged);
    const QString before = scene.dump();
    for (int id : {1, 2, 41, 44, 30}) {
        scene.press(id, {400, 300});
        scene.release();
        QCOMPARE(scene.tool->hoveredId(), 0);
    }
    QCOMPARE(rigging.count(), 0);
    QCOMPARE(ryUndoStack()->count(), 0);
    QCOMPARE(scene.dump(), before);
}

void RyHandlePickingTest::oneHoldOnly()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.press(44, {400, 300});
    scene.move({420, 300});
    const RyVec3 moved = scene.lShin->getEndPoint();
    QVERIFY(scene.press(42, {420, 300}, Qt::MiddleButton));
    scene.move({420, 300});
    QCOMPARE(scene.lShin->getEndPoint(), moved);
    scene.release();
    QCOMPARE(ryUndoStack()->count(), 1);
    QVERIFY(!ryUndoStack()->isHoldOpen());
    QCOMPARE(scene.lShin->editLevel(), 0);
}

void RyHandlePickingTest::idleHandleStillMakesAStep()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    const QString before = scene.dump();
    scene.drag(5, {400, 300}, {450, 320});
    QCOMPARE(scene.dump(), before);
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Joint Edit"));
}

void RyHandlePickingTest::rememberedViewport()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.press(44, {400, 300});
    QCOMPARE(scene.tool->pressViewport(), static_cast<Ry3DViewport *>(scene.viewport.get()));
    QCOMPARE(scene.tool->pressCameraRotation(), scene.viewport->getCamera()->getWSRot());
    scene.release();
    QVERIFY(!scene.tool->pressViewport());
}

void RyHandlePickingTest::moveWithoutHandle()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    const QString before = scene.dump();
    scene.press(0, {400, 300});
    QVERIFY(!scene.move({450, 300}));
    scene.release();
    QCOMPARE(scene.dump(), before);
    QCOMPARE(ryUndoStack()->count(), 0);
}

RY_TEST(RyHandlePickingTest)

#include "tst_RyHandlePicking.moc"
