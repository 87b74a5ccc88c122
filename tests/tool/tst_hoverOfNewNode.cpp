#include "support/RyTest.h"

#include "RyToolScene.h"

#include "rycore/undo/RyUndoStackHold.h"

/// What lies under a cursor that rests while another node becomes current.
class RyHoverOfNewNodeTest : public QObject
{
    Q_OBJECT

private slots:
    void isAskedAnew();
    void notWhereTheCursorIsNot();
    void notWhileAButtonIsHeld();
    void notForAnotherTool();

private:
    /// As the window system tells a viewport.
    static void send(RyToolScene &scene, QEvent::Type type, const QPoint &point, Qt::MouseButton button,
                     Qt::MouseButtons buttons)
    {
        QMouseEvent event(type, point, button, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(scene.viewport.get(), &event);
    }
    static void moveTo(RyToolScene &scene, int id, const QPoint &point)
    {
        scene.viewport->nextId = id;
        send(scene, QEvent::MouseMove, point, Qt::NoButton, Qt::NoButton);
    }
};

void RyHoverOfNewNodeTest::isAskedAnew()
{
    RyToolScene scene;
    scene.pose();
    scene.select(scene.lShin);
    moveTo(scene, 44, {123, 45});
    QCOMPARE(scene.tool->hoveredId(), 44);
    QVERIFY(!scene.viewport->toolTip.isEmpty());
    // The arrow goes away with the bone; nothing is in its place.
    scene.viewport->nextId = 0;
    scene.select(scene.lFoot);
    QCOMPARE(scene.tool->hoveredId(), 0);
    QCOMPARE(scene.viewport->toolTip, QString());
    QCOMPARE(scene.viewport->lastPoint, QPoint(123, 45));
    // Another handle comes to where the cursor is.
    scene.viewport->nextId = 2;
    QKeyEvent up(QEvent::KeyPress, Qt::Key_Up, Qt::NoModifier);
    QCoreApplication::sendEvent(scene.viewport.get(), &up);
    QCoreApplication::sendPostedEvents();
    QCOMPARE(scene.tool->currentNode(), static_cast<RyNode *>(scene.lShin));
    QCOMPARE(scene.tool->hoveredId(), 2);
    QCOMPARE(scene.viewport->lastPoint, QPoint(123, 45));
    // And a bone that the tool selects itself shows no handle that is not there.
    scene.viewport->nextId = 0;
    scene.viewport->nextNode = scene.rThigh;
    scene.select(scene.rThigh);
    QCOMPARE(scene.tool->hoveredId(), 0);
    QCOMPARE(scene.tool->getHighlightNode(), static_cast<RyNode *>(scene.rThigh));
}

void RyHoverOfNewNodeTest::notWhereTheCursorIsNot()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    QCOMPARE(scene.viewport->gizmoPicks, 0);
    moveTo(scene, 44, {123, 45});
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(scene.viewport.get(), &leave);
    QCOMPARE(scene.tool->hoveredId(), 0);
    const int picks = scene.viewport->gizmoPicks;
    scene.viewport->nextId = 2;
    scene.select(scene.lFoot);
    QCOMPARE(scene.viewport->gizmoPicks, picks);
    QCOMPARE(scene.tool->hoveredId(), 0);
}

void RyHoverOfNewNodeTest::notWhileAButtonIsHeld()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    moveTo(scene, 44, {123, 45});
    send(scene, QEvent::MouseButtonPress, {123, 45}, Qt::LeftButton, Qt::LeftButton);
    send(scene, QEvent::MouseMove, {140, 45}, Qt::NoButton, Qt::LeftButton);
    QVERIFY(scene.tool->isDragging());
    const int picks = scene.viewport->gizmoPicks;
    scene.viewport->nextId = 2;
    scene.select(scene.lFoot);
    QCOMPARE(scene.viewport->gizmoPicks, picks);
    QCOMPARE(scene.tool->hoveredId(), 0);
    send(scene, QEvent::MouseButtonRelease, {140, 45}, Qt::LeftButton, Qt::NoButton);
    scene.select(scene.lShin);
    QCOMPARE(scene.tool->hoveredId(), 2);
    QCOMPARE(scene.viewport->lastPoint, QPoint(140, 45));
}

void RyHoverOfNewNodeTest::notForAnotherTool()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    moveTo(scene, 44, {123, 45});
    scene.manager->setActiveTool(nullptr);
    const int picks = scene.viewport->gizmoPicks;
    scene.tool->hoverAgain();
    QCOMPARE(scene.viewport->gizmoPicks, picks);
    QCOMPARE(scene.tool->hoveredId(), 0);
    // On its way back it asks.
    scene.viewport->nextId = 41;
    scene.manager->setActiveTool(scene.tool);
    QCOMPARE(scene.tool->hoveredId(), 41);
}

RY_TEST(RyHoverOfNewNodeTest)

#include "tst_hoverOfNewNode.moc"
