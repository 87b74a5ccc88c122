#include "support/RyTest.h"

#include "RyToolScene.h"

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

/// What shows while the mouse moves over handles and bones: tool tip, cursor, highlight, status text.
class RyHandleHoverTest : public QObject
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
    void toolTipComesBack();
    void toolTipOfAViewportThatIsGone();
};

void RyHandleHoverTest::hoverShowsTipAndCursor_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("toolTip");
    QTest::addColumn<bool>("isRing");
    for (const TipRow &row : tipRows)
        QTest::addRow("%d", row.id) << row.id << QString::fromLatin1(row.toolTip) << row.isRing;
}

void RyHandleHoverTest::hoverShowsTipAndCursor()
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

void RyHandleHoverTest::hoverAsksAtTheEvent()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.hover(44, QPoint(123, 45));
    QCOMPARE(scene.viewport->lastPoint, QPoint(123, 45));
}

void RyHandleHoverTest::hoverNothing()
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

void RyHandleHoverTest::hoverSameAgain()
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

void RyHandleHoverTest::hoverRemovesHighlight()
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

void RyHandleHoverTest::hoverUnusedIds()
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

void RyHandleHoverTest::hoverBone()
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

void RyHandleHoverTest::leavingClears()
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

void RyHandleHoverTest::statusText()
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

void RyHandleHoverTest::statusTextWhileDragging()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.press(44, {400, 300});
    QSignalSpy changes(scene.tool, &RyViewTool::statusTextChanged);
    scene.move({420, 300});
    scene.move({440, 300});
    QCOMPARE(changes.count(), 1);
    QCOMPARE(scene.tool->getStatusText(),
             QStringLiteral("lShin, end point X: drag to move along X, Ctrl keeps the bone's "
                            "length; right click or Esc cancels"));
    scene.release({440, 300});
    QCOMPARE(scene.tool->getStatusText(), QString());
}

void RyHandleHoverTest::statusTextInInteractiveMode()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    QSignalSpy changes(scene.tool, &RyViewTool::statusTextChanged);
    scene.tool->setBoneCreationActive(true);
    QCOMPARE(changes.count(), 1);
    const QString creates = QStringLiteral("Ctrl+click creates a child bone of lShin");
    QCOMPARE(scene.tool->getStatusText(), creates);
    scene.hover(44);
    QCOMPARE(scene.tool->getStatusText(),
             QStringLiteral("lShin, end point X: drag to move along X, Ctrl keeps the bone's length; ") + creates);
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

void RyHandleHoverTest::toolTipComesBack()
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

void RyHandleHoverTest::toolTipOfAViewportThatIsGone()
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

RY_TEST(RyHandleHoverTest)

#include "tst_RyHandleHover.moc"
