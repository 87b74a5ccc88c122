#include "support/RyTest.h"

#include "RyMouseStage.h"

#include "pluginsource/RyJointTools/tool/handles/RyHandleId.h"

/// The surface is drawn as the parameter says while a handle is still held.
class RySurfaceFollowsTest : public QObject
{
    Q_OBJECT

private slots:
    void posed();
    void atRest();

private:
    /// How often the scene is drawn for moves of the mouse before the handle is released.
    static void countPaints(RyMouseStage &stage, int &paints, bool &movesPoints);
};

void RySurfaceFollowsTest::countPaints(RyMouseStage &stage, int &paints, bool &movesPoints)
{
    QVERIFY(stage.isShown());
    stage.editFor(HandleId::TwistEnd);
    const auto grip = stage.findGrip(HandleId::TwistEnd);
    QVERIFY(grip);
    stage.mouse.press(grip->pixel);
    QTest::qWait(100);
    const int before = stage.view.counts().scenePaints;
    const std::vector<RyVec3> points = stage.doll.figure->getObject()->getDeformedPositions();
    for (const double share : {0.4, 1.0}) {
        const int shown = stage.view.counts().framePaints;
        stage.mouse.move(stage.cursorAt(*grip, share));
        QTRY_VERIFY(stage.view.counts().framePaints > shown);
    }
    movesPoints = stage.doll.figure->getObject()->getDeformedPositions() != points;
    paints = stage.view.counts().scenePaints - before;
    stage.mouse.release(grip->pixel);
}

void RySurfaceFollowsTest::posed()
{
    RyMouseStage stage(1.0f, 1.0f, true, true);
    int paints = 0;
    bool movesPoints = false;
    countPaints(stage, paints, movesPoints);
    QVERIFY(movesPoints);
    QVERIFY(paints >= 1 && paints <= 2);
}

/// No vertex moves: what is kept of the scene stays.
void RySurfaceFollowsTest::atRest()
{
    RyMouseStage stage(1.0f, 1.0f, false, false);
    for (RyNode *node : ryScene()->getNodes()) {
        for (RyFloatProperty *control : {node->getXRotControl(), node->getYRotControl(), node->getZRotControl()}) {
            if (control && qobject_cast<RyBone *>(node))
                control->setValue(0.0f);
        }
    }
    int paints = 0;
    bool movesPoints = true;
    countPaints(stage, paints, movesPoints);
    QVERIFY(!movesPoints);
    QCOMPARE(paints, 0);
}

RY_TEST(RySurfaceFollowsTest)

#include "tst_surfaceFollows.moc"
