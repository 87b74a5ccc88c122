#include "support/RyTest.h"

#include "tool/RyToolScene.h"

#include "rycore/viewport/RyDrawStyle.h"

/// Clicks in a viewport that make bones.
class RyBoneCreationClicksTest : public QObject
{
    Q_OBJECT

private slots:
    void clickCreates();
    void clickWithoutACamera();
    void clickUsesItsOwnViewport();
    void clickNeedsEverything_data();
    void clickNeedsEverything();
    void clickOnAHandleDragsNothing();
    void clickOnAProp();
};

void RyBoneCreationClicksTest::clickCreates()
{
    RyToolScene scene;
    scene.viewport->getCamera()->lookAt({0, 60, 300}, {0, 60, 0});
    scene.select(scene.lFoot);
    scene.tool->setBoneCreationActive(true);
    const RyVec3 goal(25, 40, 0);
    QMouseEvent event(QEvent::MouseButtonPress, scene.pixelOf(goal), Qt::LeftButton, Qt::LeftButton,
                      Qt::ControlModifier);
    event.ignore();
    QVERIFY(scene.tool->mousePress(scene.viewport.get(), &event, RyViewMouseModifier::Control));
    QVERIFY(event.isAccepted());
    QCOMPARE(scene.lFoot->getNumNodeChildren(), 1);
    const RyNode *bone = scene.lFoot->getNodeChild(0);
    QCOMPARE(bone->getName(), QStringLiteral("lFoot2"));
    QCOMPARE(bone->getOrigin(), scene.lFoot->getEndPoint());
    // Half a pixel is some 0.15 here.
    QVERIFY((bone->getEndPoint() - goal).length() < 0.3f);
    QVERIFY(std::abs(bone->getEndPoint().z) < 1e-3f);
    scene.release();
    QCOMPARE(scene.tool->currentNode(), static_cast<RyNode *>(scene.lFoot));
    QCOMPARE(scene.viewport->nodePicks, 0);
    QCOMPARE(ryUndoStack()->count(), 0);
    QVERIFY(!ryUndoStack()->isHoldOpen());
    // The next pass that asks what lies where knows it.
    QCOMPARE(scene.tool->bones().find(bone), -1);
    scene.tool->draw(scene.viewport.get(), RyDrawStyle(RyDrawStyle::PickPass));
    QVERIFY(scene.tool->bones().find(bone) >= 0);
    QCOMPARE(scene.tool->bones().count(), 6);
}

void RyBoneCreationClicksTest::clickWithoutACamera()
{
    RyToolScene scene;
    scene.select(scene.lFoot);
    scene.tool->setBoneCreationActive(true);
    delete scene.viewport->getCamera();
    QVERIFY(!scene.viewport->getCamera());
    const QString before = scene.dump();
    // The click is the tool's all the same.
    QVERIFY(scene.press(0, QPoint(300, 200), Qt::LeftButton, Qt::ControlModifier));
    QCOMPARE(scene.dump(), before);
}

void RyBoneCreationClicksTest::clickUsesItsOwnViewport()
{
    RyToolScene scene;
    scene.viewport->getCamera()->lookAt({0, 60, 300}, {0, 60, 0});
    RyScriptedViewport other(scene.manager.get());
    other.resize(320, 400);
    other.getCamera()->lookAt({300, 20, 10}, {0, 0, 0});
    scene.select(scene.lFoot);
    scene.tool->setBoneCreationActive(true);
    other.makeCurrent();
    const RyVec3 goal(-30, 80, 0);
    scene.press(0, scene.pixelOf(goal), Qt::LeftButton, Qt::ControlModifier);
    QCOMPARE(scene.lFoot->getNumNodeChildren(), 1);
    QVERIFY((scene.lFoot->getNodeChild(0)->getEndPoint() - goal).length() < 0.3f);
}

void RyBoneCreationClicksTest::clickNeedsEverything_data()
{
    QTest::addColumn<bool>("node");
    QTest::addColumn<bool>("mode");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<int>("button");
    QTest::addColumn<bool>("creates");
    const int control = Qt::ControlModifier;
    QTest::newRow("all there") << true << true << control << int(Qt::LeftButton) << true;
    QTest::newRow("no node") << false << true << control << int(Qt::LeftButton) << false;
    QTest::newRow("mode off") << true << false << control << int(Qt::LeftButton) << false;
    QTest::newRow("no modifier") << true << true << int(Qt::NoModifier) << int(Qt::LeftButton) << false;
    QTest::newRow("Shift") << true << true << int(Qt::ShiftModifier) << int(Qt::LeftButton) << false;
    QTest::newRow("Alt") << true << true << int(Qt::AltModifier) << int(Qt::LeftButton) << false;
    QTest::newRow("right button") << true << true << control << int(Qt::RightButton) << false;
}

void RyBoneCreationClicksTest::clickNeedsEverything()
{
    QFETCH(bool, node);
    QFETCH(bool, mode);
    QFETCH(int, modifiers);
    QFETCH(int, button);
    QFETCH(bool, creates);
    RyToolScene scene;
    if (node)
        scene.select(scene.lFoot);
    else
        scene.manager->setActiveTool(scene.tool);
    scene.tool->setBoneCreationActive(mode);
    const bool handled = scene.press(0, QPoint(300, 200), Qt::MouseButton(button), Qt::KeyboardModifiers(modifiers));
    QCOMPARE(int(scene.figure->getAllBones().size()), creates ? 6 : 5);
    QCOMPARE(handled, creates);
}

void RyBoneCreationClicksTest::clickOnAHandleDragsNothing()
{
    RyToolScene scene;
    scene.select(scene.lFoot);
    scene.tool->setBoneCreationActive(true);
    for (int id : {2, 44, 47}) {
        scene.hover(id);
        QVERIFY(scene.press(id, QPoint(300, 200), Qt::LeftButton, Qt::ControlModifier));
        const QString created = scene.dump();
        scene.move(QPoint(340, 230), Qt::ControlModifier);
        scene.release(QPoint(340, 230));
        QCOMPARE(scene.dump(), created);
    }
    QCOMPARE(scene.lFoot->getNumNodeChildren(), 3);
    QCOMPARE(ryScene()->getNumSelectedNodes(), 1);
    QCOMPARE(ryUndoStack()->count(), 0);
}

void RyBoneCreationClicksTest::clickOnAProp()
{
    RyToolScene scene;
    scene.select(scene.prop);
    scene.tool->setBoneCreationActive(true);
    const QString before = scene.dump();
    QVERIFY(scene.press(0, QPoint(300, 200), Qt::LeftButton, Qt::ControlModifier));
    QCOMPARE(scene.dump(), before);
}

RY_TEST(RyBoneCreationClicksTest)

#include "tst_boneCreationClicks.moc"
