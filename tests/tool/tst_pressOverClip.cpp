#include "support/RyTest.h"

#include "RyToolScene.h"
#include "player/ToyClip.h"

#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/viewport/RyDrawStyle.h"

/// Presses of the mouse while a clip shows.
class RyPressOverClipTest : public QObject
{
    Q_OBJECT

private slots:
    void handles_data();
    void handles();
    void bones();
    void newBones();
    void toolChoice();

private:
    static void show(RyToolScene &scene)
    {
        const auto origin = std::make_shared<ToyOrigin>();
        origin->given = {
            std::make_shared<ToyClip>(QStringLiteral("walk"), 0.0, 9.0, std::vector<RyNode *>{scene.hip, scene.lShin})};
        ryScene()->setOrigins({origin});
        player().show(origin->given.front(), 4.0);
    }
    static RyClipPlayer &player() { return *ryScene()->getClipPlayer(); }
};

void RyPressOverClipTest::handles_data()
{
    QTest::addColumn<int>("id");
    QTest::newRow("origin") << 1;
    QTest::newRow("end point") << 2;
    QTest::newRow("arrow") << 46;
}

/// The first press puts the clip away and changes nothing, however the mouse moves; the next one drags.
void RyPressOverClipTest::handles()
{
    QFETCH(int, id);
    RyToolScene scene;
    scene.pose();
    scene.select(scene.lShin);
    show(scene);
    const QString before = scene.dump();
    const int steps = ryUndoStack()->count();
    QVERIFY(scene.press(id, {400, 300}));
    QVERIFY(!player().isShowing());
    scene.move({430, 290});
    scene.move({460, 280});
    scene.release({460, 280});
    QCOMPARE(scene.dump(), before);
    QCOMPARE(ryUndoStack()->count(), steps);
    scene.drag(id, {400, 300}, {460, 280});
    QCOMPARE(ryUndoStack()->count(), steps + 1);
    QVERIFY(scene.dump() != before);
}

void RyPressOverClipTest::bones()
{
    RyToolScene scene;
    scene.pose();
    scene.select(scene.lShin);
    show(scene);
    // Bones get their ids in a pick pass.
    scene.tool->draw(scene.viewport.get(), RyDrawStyle(RyDrawStyle::PickPass));
    scene.press(48, {400, 300});
    scene.release();
    QCOMPARE(ryScene()->getPrimarySelection(), scene.lThigh);
    QVERIFY(player().isShowing());
    scene.viewport->nextNode = scene.prop;
    scene.press(0, {400, 300});
    scene.release();
    QCOMPARE(ryScene()->getPrimarySelection(), scene.prop);
    QVERIFY(player().isShowing());
}

void RyPressOverClipTest::newBones()
{
    RyToolScene scene;
    scene.pose();
    scene.select(scene.lShin);
    scene.tool->setBoneCreationActive(true);
    show(scene);
    const size_t count = ryScene()->getNodes().size();
    scene.press(0, {400, 300}, Qt::LeftButton, Qt::ControlModifier);
    scene.release();
    QVERIFY(!player().isShowing());
    QCOMPARE(ryScene()->getNodes().size(), count);
    scene.press(0, {400, 300}, Qt::LeftButton, Qt::ControlModifier);
    scene.release();
    QCOMPARE(ryScene()->getNodes().size(), count + 1);
}

void RyPressOverClipTest::toolChoice()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    show(scene);
    scene.manager->setActiveTool(nullptr);
    QVERIFY(player().isShowing());
    scene.manager->setActiveTool(scene.tool);
    QVERIFY(player().isShowing());
    scene.viewport->setStandardView(Ry3DViewport::StandardView::Top);
    scene.viewport->frameNodes(true);
    QVERIFY(player().isShowing());
}

RY_TEST(RyPressOverClipTest)
#include "tst_pressOverClip.moc"
