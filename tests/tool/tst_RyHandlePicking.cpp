#include "support/RyTest.h"

#include "RyToolScene.h"

#include "rycore/viewport/RyDrawStyle.h"

#include <QSignalSpy>

namespace {

struct TipRow
{
    int id;
    const char *toolTip;
    bool isRing;
};

const TipRow tipRows[] = {
    {1, "Translate the center point of this bone.", false},
    {2, "Translate the end point of this bone.", false},
    {5, "Rotate Dynamic Sphere on the X axis", true},
    {6, "Rotate Dynamic Sphere on the Y axis", true},
    {7, "Rotate Dynamic Sphere on the Z axis", true},
    {8, "Rotate Static Sphere on the X axis", true},
    {9, "Rotate Static Sphere on the Y axis", true},
    {10, "Rotate Static Sphere on the Z axis", true},
    {11, "Translate Dynamic Sphere on the X axis.", false},
    {12, "Translate Dynamic Sphere on the Y axis.", false},
    {13, "Translate Dynamic Sphere on the Z axis.", false},
    {14, "Translate Static Sphere on the X axis.", false},
    {15, "Translate Static Sphere on the Y axis.", false},
    {16, "Translate Static Sphere on the Z axis.", false},
    {17, "Scale Dynamic Sphere from this point", false},
    {18, "Scale Dynamic Sphere from this point", false},
    {19, "Scale Dynamic Sphere from this point", false},
    {20, "Scale Dynamic Sphere from this point", false},
    {21, "Scale Dynamic Sphere from this point", false},
    {22, "Scale Dynamic Sphere from this point", false},
    {23, "Scale Static Sphere from this point", false},
    {24, "Scale Static Sphere from this point", false},
    {25, "Scale Static Sphere from this point", false},
    {26, "Scale Static Sphere from this point", false},
    {27, "Scale Static Sphere from this point", false},
    {28, "Scale Static Sphere from this point", false},
    {29, "Static A Angle", false},
    {30, "Dynamic B Angle", false},
    {31, "Dynamic C Angle", false},
    {32, "Static D Angle", false},
    {33, "Translate Twist start on its axis", false},
    {34, "Translate Twist end on its axis", false},
    {35, "Translate High start of the smooth zone on its axis", false},
    {36, "Translate High end of the smooth zone on its axis", false},
    {37, "Translate Low end of the smooth zone on its axis", false},
    {38, "Translate Low start of the smooth zone on its axis", false},
    {39, "General Scale for the Static Sphere.", false},
    {40, "General Scale for the Dynamic Sphere.", false},
    {41, "Translate Origin on the X axis.", false},
    {42, "Translate Origin on the Y axis.", false},
    {43, "Translate Origin on the Z axis.", false},
    {44, "Translate End Point on the X axis.", false},
    {45, "Translate End Point on the Y axis.", false},
    {46, "Translate End Point on the Z axis.", false},
};

} // namespace

/// Hover, press and release with scripted picks.
class RyHandlePickingTest : public QObject
{
    Q_OBJECT

private slots:
    void hoverShowsTipAndCursor_data();
    void hoverShowsTipAndCursor();
    void hoverAsksAtTheEvent();
    void hoverNothing();
    void hoverSameAgain();
    void hoverRemovesHighlight();
    void hoverUnusedIds();
    void hoverBone();
    void leavingClears();
    void statusText();
    void statusTextWhileDragging();
    void statusTextInInteractiveMode();
    void pressHandle();
    void pressNothing();
    void pressWithoutNode();
    void pressBone();
    void pressOwnOrMissingBone();
    void pressBoneIsNoDrag();
    void pressOnRemovedBone();
    void rightPressIdle();
    void rightPressCancels();
    void releaseAccepts();
    void lostRelease();
    void lostReleaseOfAPress();
    void pressAfterLostRelease();
    void releaseWithoutHandle();
    void toolTipComesBack();
    void toolTipOfAViewportThatIsGone();
    void pressAndReleaseLeavesNothing();
    void oneHoldOnly();
    void idleHandleStillMakesAStep();
    void rememberedViewport();
    void moveWithoutHandle();
};

void RyHandlePickingTest::hoverShowsTipAndCursor_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("toolTip");
    QTest::addColumn<bool>("isRing");
    for (const TipRow &row : tipRows)
        QTest::addRow("%d", row.id) << row.id << QString::fromLatin1(row.toolTip) << row.isRing;
}

void RyHandlePickingTest::hoverShowsTipAndCursor()
{
    QFETCH(int, id);
    QFETCH(QString, toolTip);
    QFETCH(bool, isRing);
    RyToolScene scene;
    scene.select(scene.lShin);
    // Straight from another handle.
    scene.hover(id == 41 ? 42 : 41);
    const int redraws = scene.tool->drawnDataChangeCount();
    scene.viewport->setCursor(Qt::ArrowCursor);
    scene.hover(id);
    QCOMPARE(scene.viewport->toolTip, toolTip);
    QCOMPARE(scene.viewport->cursor().shape(), Qt::PointingHandCursor);
    QCOMPARE(scene.tool->hoveredId(), id);
    QCOMPARE(scene.tool->drawnDataChangeCount(), redraws + 1);
    QCOMPARE(scene.viewport->nodePicks, 0);

    scene.hover(0);
    scene.tool->setRestrictRotationAxes(true);
    scene.hover(id);
    QCOMPARE(scene.viewport->toolTip, toolTip);
    QCOMPARE(scene.viewport->cursor().shape(), isRing ? Qt::ForbiddenCursor : Qt::PointingHandCursor);
}

void RyHandlePickingTest::hoverAsksAtTheEvent()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.hover(44, QPoint(123, 45));
    QCOMPARE(scene.viewport->lastPoint, QPoint(123, 45));
}

void RyHandlePickingTest::hoverNothing()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.hover(44);
    const int redraws = scene.tool->drawnDataChangeCount();
    scene.hover(0);
    QCOMPARE(scene.tool->hoveredId(), 0);
    QCOMPARE(scene.viewport->toolTip, QString());
    QCOMPARE(scene.viewport->cursor().shape(), Qt::ArrowCursor);
    QCOMPARE(scene.tool->drawnDataChangeCount(), redraws + 1);
    QCOMPARE(scene.viewport->nodePicks, 1);

    const int toolTips = scene.viewport->toolTips;
    scene.viewport->setCursor(Qt::CrossCursor);
    scene.hover(0);
    QCOMPARE(scene.tool->drawnDataChangeCount(), redraws + 1);
    QCOMPARE(scene.viewport->toolTips, toolTips);
    QCOMPARE(scene.viewport->cursor().shape(), Qt::ArrowCursor);
    QCOMPARE(scene.viewport->nodePicks, 2);
}

void RyHandlePickingTest::hoverSameAgain()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.hover(44);
    const int redraws = scene.tool->drawnDataChangeCount();
    const int toolTips = scene.viewport->toolTips;
    scene.viewport->setCursor(Qt::CrossCursor);
    scene.hover(44, QPoint(401, 300));
    QCOMPARE(scene.tool->drawnDataChangeCount(), redraws);
    QCOMPARE(scene.viewport->toolTips, toolTips);
    QCOMPARE(scene.viewport->cursor().shape(), Qt::CrossCursor);
}

void RyHandlePickingTest::hoverRemovesHighlight()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.viewport->nextNode = scene.prop;
    scene.hover(0);
    QCOMPARE(scene.tool->getHighlightNode(), scene.prop);
    scene.hover(44);
    QVERIFY(!scene.tool->getHighlightNode());
    scene.hover(0);
    QCOMPARE(scene.tool->getHighlightNode(), scene.prop);
    scene.hover(48);
    QVERIFY(!scene.tool->getHighlightNode());
}

void RyHandlePickingTest::hoverUnusedIds()
{
    for (int id : {3, 4}) {
        RyToolScene scene;
        scene.select(scene.lShin);
        scene.viewport->setCursor(Qt::CrossCursor);
        const int redraws = scene.tool->drawnDataChangeCount();
        const int toolTips = scene.viewport->toolTips;
        scene.hover(id);
        QCOMPARE(scene.tool->hoveredId(), id);
        QCOMPARE(scene.viewport->toolTips, toolTips);
        QCOMPARE(scene.viewport->cursor().shape(), Qt::CrossCursor);
        QCOMPARE(scene.tool->drawnDataChangeCount(), redraws + 1);
    }
}

void RyHandlePickingTest::hoverBone()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.viewport->setCursor(Qt::CrossCursor);
    int redraws = scene.tool->drawnDataChangeCount();
    const int toolTips = scene.viewport->toolTips;
    scene.hover(49);
    QCOMPARE(scene.viewport->toolTips, toolTips);
    QCOMPARE(scene.viewport->cursor().shape(), Qt::CrossCursor);
    QCOMPARE(scene.viewport->nodePicks, 0);
    QCOMPARE(scene.tool->drawnDataChangeCount(), redraws + 1);

    scene.hover(44);
    QVERIFY(!scene.viewport->toolTip.isEmpty());
    redraws = scene.tool->drawnDataChangeCount();
    scene.hover(50);
    QCOMPARE(scene.viewport->toolTip, QString());
    QCOMPARE(scene.tool->hoveredId(), 50);
    QCOMPARE(scene.tool->drawnDataChangeCount(), redraws + 1);
}

void RyHandlePickingTest::leavingClears()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.hover(44);
    scene.tool->mouseLeave(scene.viewport.get());
    QCOMPARE(scene.tool->hoveredId(), 0);
    QCOMPARE(scene.viewport->toolTip, QString());
    // A drag goes on outside the viewport.
    scene.press(44, {400, 300});
    scene.tool->mouseLeave(scene.viewport.get());
    QCOMPARE(scene.tool->hoveredId(), 44);
}

void RyHandlePickingTest::statusText()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    QSignalSpy changes(scene.tool, &RyViewTool::statusTextChanged);
    QCOMPARE(scene.tool->getStatusText(), QString());
    scene.hover(44);
    QCOMPARE(changes.count(), 1);
    QCOMPARE(scene.tool->getStatusText(),
             QStringLiteral("lShin, end point X: drag to move along X, Ctrl keeps the bone's length"));
    scene.hover(42);
    QCOMPARE(scene.tool->getStatusText(),
             QStringLiteral("lShin, center point Y: drag to move along Y, Ctrl keeps the bone's length"));
    scene.hover(1);
    QCOMPARE(scene.tool->getStatusText(),
             QStringLiteral("lShin, center point: drag to move in the view plane, Ctrl keeps the bone's length"));
    scene.lShin->setLabel(QStringLiteral("Left Shin"));
    scene.hover(2);
    QCOMPARE(scene.tool->getStatusText(),
             QStringLiteral("Left Shin, end point: drag to move in the view plane, Ctrl keeps the bone's length"));
    scene.hover(0);
    QCOMPARE(scene.tool->getStatusText(), QString());
    QCOMPARE(changes.count(), 5);
}

void RyHandlePickingTest::statusTextWhileDragging()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.press(44, {400, 300});
    QSignalSpy changes(scene.tool, &RyViewTool::statusTextChanged);
    scene.move({420, 300});
    scene.move({440, 300});
    QCOMPARE(changes.count(), 1);
    QCOMPARE(scene.tool->getStatusText(), QStringLiteral("lShin, end point X: drag to move along X, Ctrl keeps the bone's "
                                                         "length; right click or Esc cancels"));
    scene.release({440, 300});
    QCOMPARE(scene.tool->getStatusText(), QString());
}

void RyHandlePickingTest::statusTextInInteractiveMode()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    QSignalSpy changes(scene.tool, &RyViewTool::statusTextChanged);
    scene.tool->setBoneCreationActive(true);
    QCOMPARE(changes.count(), 1);
    const QString creates = QStringLiteral("Ctrl+click creates a child bone of lShin");
    QCOMPARE(scene.tool->getStatusText(), creates);
    scene.hover(44);
    QCOMPARE(scene.tool->getStatusText(), QStringLiteral("lShin, end point X: drag to move along X, Ctrl keeps the bone's length; ") + creates);
    scene.hover(0);
    scene.tool->setHighlightNode(scene.hip);
    QCOMPARE(scene.tool->getStatusText(), QStringLiteral("hip: click to select; ") + creates);
    scene.tool->setBoneCreationActive(false);
    QCOMPARE(scene.tool->getStatusText(), QStringLiteral("hip: click to select, Ctrl adds to the selection"));
    scene.tool->setHighlightNode(scene.lShin);
    QCOMPARE(scene.tool->getStatusText(), QString());
    scene.tool->setBoneCreationActive(true);
    changes.clear();
    scene.select(scene.hip);
    QVERIFY(changes.count() > 0);
    scene.tool->setHighlightNode(nullptr);
    QCOMPARE(scene.tool->getStatusText(), QStringLiteral("Ctrl+click creates a child bone of hip"));
    scene.select(nullptr);
    QCOMPARE(scene.tool->getStatusText(), QString());
}

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
    QCOMPARE(scene.dump(), before);
    QCOMPARE(scene.tool->hoveredId(), 0);
    QVERIFY(!scene.tool->isDragging());
    QVERIFY(!ryUndoStack()->isHoldOpen());
    QCOMPARE(scene.lShin->editLevel(), 0);
    QVERIFY(!scene.move({500, 300}));
    scene.release();
    QCOMPARE(ryUndoStack()->count(), 0);
    QCOMPARE(scene.dump(), before);
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
        // The mouse comes back with no button held.
        scene.hover(next);
        QVERIFY(!scene.tool->isDragging());
        QVERIFY(!ryUndoStack()->isHoldOpen());
        QCOMPARE(scene.lShin->editLevel(), 0);
        QCOMPARE(ryUndoStack()->count(), 1);
        QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Joint Edit"));
        QCOMPARE(scene.dump(), dragged);
        QCOMPARE(scene.tool->hoveredId(), next);
        QVERIFY(!scene.tool->dragFrame().pressViewport);

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
    scene.hover(0);
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

void RyHandlePickingTest::toolTipComesBack()
{
    const QString toolTip = QStringLiteral("Translate End Point on the X axis.");
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.hover(44);
    scene.drag(44, {400, 300}, {450, 310});
    QCOMPARE(scene.viewport->toolTip, QString());
    scene.hover(44);
    QCOMPARE(scene.viewport->toolTip, toolTip);
    // A press without motion.
    scene.press(44, {400, 300});
    scene.release();
    QCOMPARE(scene.viewport->toolTip, QString());
    scene.hover(44);
    QCOMPARE(scene.viewport->toolTip, toolTip);
    scene.press(44, {400, 300});
    scene.move({450, 310});
    scene.press(44, {450, 310}, Qt::RightButton);
    QCOMPARE(scene.viewport->toolTip, QString());
    scene.release();
    scene.hover(44);
    QCOMPARE(scene.viewport->toolTip, toolTip);
    scene.manager->setActiveTool(nullptr);
    QCOMPARE(scene.viewport->toolTip, QString());
}

void RyHandlePickingTest::toolTipOfAViewportThatIsGone()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    auto other = std::make_unique<RyScriptedViewport>(scene.manager.get());
    other->nextId = 44;
    QMouseEvent event(QEvent::MouseMove, QPoint(5, 5), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    scene.tool->mouseOver(other.get(), &event, RyViewMouseModifier::None);
    QVERIFY(!other->toolTip.isEmpty());
    other.reset();
    const int toolTips = scene.viewport->toolTips;
    scene.drag(44, {400, 300}, {450, 310});
    QCOMPARE(scene.viewport->toolTips, toolTips);
    QCOMPARE(scene.tool->hoveredId(), 0);
    QCOMPARE(ryUndoStack()->count(), 1);
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
    QCOMPARE(scene.tool->dragFrame().pressViewport.data(), static_cast<Ry3DViewport *>(scene.viewport.get()));
    QCOMPARE(scene.tool->dragFrame().pressCameraRotation, scene.viewport->getCamera()->getWSRot());
    scene.release();
    QVERIFY(!scene.tool->dragFrame().pressViewport);
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
