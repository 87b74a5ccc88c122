#include "support/RyTest.h"

#include "RyToolScene.h"

/// Which presses, moves and clicks the tool accepts, of events that arrive ignored: the viewport offers them so.
class RyAcceptedEventsTest : public QObject
{
    Q_OBJECT

private slots:
    void presses_data();
    void presses();
    void createsWithControl();
    void moves();
    void rightClicks();

private:
    struct Answer
    {
        bool used = false;
        bool accepted = false;
    };
    static Answer press(RyToolScene &scene, int id, Qt::MouseButton button = Qt::LeftButton,
                        Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        scene.viewport->nextId = id;
        QMouseEvent event(QEvent::MouseButtonPress, {400, 300}, button, button, modifiers);
        event.ignore();
        const bool used = scene.tool->mousePress(scene.viewport.get(), &event, ryViewMouseModifier(modifiers));
        return {used, event.isAccepted()};
    }
};

void RyAcceptedEventsTest::presses_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<bool>("node");
    QTest::addColumn<bool>("used");
    QTest::newRow("nothing") << 0 << false << false;
    QTest::newRow("a node of the scene") << 0 << true << true;
    QTest::newRow("origin") << 1 << false << true;
    QTest::newRow("arrow") << 46 << false << true;
    QTest::newRow("first bone") << 47 << false << true;
    QTest::newRow("the current bone") << 49 << false << true;
    QTest::newRow("no bone of the figure") << 200 << false << true;
}

void RyAcceptedEventsTest::presses()
{
    QFETCH(int, id);
    QFETCH(bool, node);
    QFETCH(bool, used);
    RyToolScene scene;
    scene.pose();
    scene.select(scene.lShin);
    // Bones are known from the last pick pass.
    scene.viewport->nextNode = node ? scene.rThigh : nullptr;
    const Answer answer = press(scene, id);
    QCOMPARE(answer.accepted, used);
    QVERIFY(answer.used || !used || node);
    scene.release();
}

void RyAcceptedEventsTest::createsWithControl()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    scene.tool->setBoneCreationActive(true);
    const Answer answer = press(scene, 44, Qt::LeftButton, Qt::ControlModifier);
    QVERIFY(answer.used);
    QVERIFY(answer.accepted);
    QCOMPARE(scene.lShin->getNumNodeChildren(), 2);
}

void RyAcceptedEventsTest::moves()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    const auto move = [&] {
        QMouseEvent event(QEvent::MouseMove, {420, 310}, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        event.ignore();
        scene.tool->mouseMove(scene.viewport.get(), &event, RyViewMouseModifier::None);
        return event.isAccepted();
    };
    press(scene, 0);
    QVERIFY(!move());
    scene.release();
    press(scene, 45);
    QVERIFY(move());
    scene.release();
}

void RyAcceptedEventsTest::rightClicks()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    // Without a drag there is a menu.
    Answer answer = press(scene, 45, Qt::RightButton);
    QVERIFY(!answer.used && !answer.accepted);
    press(scene, 45);
    answer = press(scene, 45, Qt::RightButton);
    QVERIFY(!answer.used && !answer.accepted); // a press is no drag yet
    scene.move({440, 320});
    answer = press(scene, 45, Qt::RightButton);
    QVERIFY(!answer.used);
    QVERIFY(answer.accepted);
}

RY_TEST(RyAcceptedEventsTest)

#include "tst_acceptedEvents.moc"
