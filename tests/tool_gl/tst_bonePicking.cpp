#include "support/RyTest.h"

#include "RyDrawingStage.h"

#include "pluginsource/RyJointTools/tool/drawing/RyBoneDrawing.h"

/// Bones in the pick pass: their ids, and the list that gives them.
class RyBonePickingTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void pickColors();
    void pickListIsRefilled();
    void bonesOutsideTheListAreNotDrawn();
    void idsWrapBeyondTheByte();
};

void RyBonePickingTest::initTestCase()
{
    if (!RyDrawingStage::hasGL())
        QSKIP("no OpenGL here");
}

void RyBonePickingTest::pickColors()
{
    RyDrawingStage stage;
    stage.tool->setGhostBones(true);
    stage.select(stage.lShin);
    const auto recording = stage.draw(RyDrawingStage::PickPass);
    QVERIFY(!recording->primitives.empty());
    // Every colour that is ever set is an id.
    for (const auto &call : recording->calls) {
        if (call.name.startsWith("glColor")) {
            QCOMPARE(call.name, QByteArray("glColor3ub"));
            QCOMPARE(call.arguments.at(1), 0.0);
            QCOMPARE(call.arguments.at(2), 128.0);
            QVERIFY(call.arguments.at(0) >= 1);
        }
    }
    const auto bodies = RyDrawingStage::bodies(*recording);
    for (size_t i = 0; i < bodies.size(); ++i) {
        for (const auto &color : bodies[i].colors)
            QCOMPARE(color, rgbBytes(47 + int(i), 0, 128));
    }
    QCOMPARE(recording->ofMode(GL_LINE_LOOP).size(), size_t(0));
}

void RyBonePickingTest::pickListIsRefilled()
{
    RyDrawingStage stage;
    stage.select(stage.lShin);
    stage.draw();
    QCOMPARE(stage.tool->bones().count(), 0);
    stage.draw(RyDrawingStage::PickPass);
    QCOMPARE(stage.tool->bones().count(), 5);
    QCOMPARE(stage.tool->bones().find(stage.lFoot), 3);
    RyBone *toes = RyToolScene::makeBone(stage.lFoot, "toes", {11, 2, 13}, {11, 1, 16});
    stage.draw();
    QCOMPARE(stage.tool->bones().count(), 5);
    stage.draw(RyDrawingStage::PickPass);
    QCOMPARE(stage.tool->bones().find(toes), 4);
    QCOMPARE(stage.tool->bones().find(stage.rThigh), 5);
    QCOMPARE(stage.tool->bones().boneAt(4, stage.figure), toes);
    stage.select(stage.prop);
    stage.draw(RyDrawingStage::PickPass);
    QCOMPARE(stage.tool->bones().count(), 0);
}

void RyBonePickingTest::bonesOutsideTheListAreNotDrawn()
{
    RyDrawingStage stage;
    const RyJointToolDisplay display;
    const RyBoneIndex empty;
    const RyDrawContext context{true, 0, display, stage.lShin, empty, stage.viewport.get()};
    RyBoneFrames frames;
    frames.addIfBone(stage.lShin);
    QCOMPARE(int(frames.entries().size()), 1);
    RyGLRecorder recorder;
    RyBoneDrawing(context).draw(frames);
    recorder.stop();
    QCOMPARE(int(recorder.primitives.size()), 0);
    QCOMPARE(recorder.count("glColor3ub"), 0);
}

void RyBonePickingTest::idsWrapBeyondTheByte()
{
    RyDrawingStage stage;
    for (int i = 5; i < 215; ++i)
        RyToolScene::makeBone(stage.rThigh, "more", {-11, 50, 2}, {-11.0f, 50.0f + float(i), 2});
    stage.select(stage.hip);
    const auto bodies = RyDrawingStage::bodies(*stage.draw(RyDrawingStage::PickPass));
    QCOMPARE(bodies.size(), size_t(215));
    QCOMPARE(bodies[208].color(), rgbBytes(255, 0, 128));
    QCOMPARE(bodies[209].color(), rgbBytes(0, 0, 128));
    QCOMPARE(bodies[210].color(), rgbBytes(1, 0, 128));
}

RY_TEST(RyBonePickingTest)
#include "tst_bonePicking.moc"
