#include "support/RyTest.h"

#include "RyDrawingStage.h"

#include "pluginsource/RyJointTools/operations/alignNode.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/viewport/RyGLContext.h"
#include "rycore/viewport/RyOffscreenContext.h"

#include <QMouseEvent>

/// How much is drawn and how often the context is asked and set, in figures of few and of many bones.
class RyDrawingCountsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void stateIsSetOncePerPass_data();
    void stateIsSetOncePerPass();
    void bonesOutOfViewAreLeftOut();
    void handlesOutOfViewAreLeftOut();
    void linksOutOfViewAreLeftOut();
    void tilesLeaveOutWhatIsBeyond();
    void noCallWhileNothingChanges();

private:
    /// The test figure and so many bones more, all before the camera.
    struct Stage : RyDrawingStage
    {
        explicit Stage(int more = 0)
        {
            for (int i = 0; i < more; ++i) {
                const RyVec3 place(-60.0f + 5.0f * float(i % 25), 20.0f + 8.0f * float(i / 25), 5);
                added.push_back(makeBone(i % 5 == 0 ? hip : added.back(), qPrintable(QStringLiteral("b%1").arg(i)),
                                         place, place + RyVec3(4, 3, 1)));
            }
            pose();
            tool->setGhostBones(true);
            viewport->getCamera()->lookAt({30, 80, 420}, {10, 70, 0});
            select(lShin);
        }
        std::vector<RyBone *> added;
    };
};

void RyDrawingCountsTest::initTestCase()
{
    if (!RyDrawingStage::hasGL())
        QSKIP("no OpenGL here");
}

void RyDrawingCountsTest::stateIsSetOncePerPass_data()
{
    QTest::addColumn<int>("shadeStyle");
    QTest::newRow("picture") << 3;
    QTest::newRow("pick pass") << int(RyDrawingStage::PickPass);
}

void RyDrawingCountsTest::stateIsSetOncePerPass()
{
    QFETCH(int, shadeStyle);
    Stage few;
    const auto small = few.draw(shadeStyle);
    const size_t fewBodies = RyDrawingStage::bodies(*small).size();
    QVERIFY(fewBodies >= 5);
    Stage many(100);
    const auto large = many.draw(shadeStyle);
    QCOMPARE(RyDrawingStage::bodies(*large).size(), fewBodies + (shadeStyle == 3 ? 200 : 100));
    for (const char *function : {"glPushAttrib", "glPopAttrib", "glPushMatrix", "glPopMatrix", "glMultMatrixf",
                                 "glLineStipple", "glLineWidth", "glPointSize"})
        QCOMPARE(large->count(function), small->count(function));
    QVERIFY(large->others == small->others);
    QVERIFY(large->countOther() > 0);
}

void RyDrawingCountsTest::bonesOutOfViewAreLeftOut()
{
    Stage stage(100);
    stage.tool->setShowBoneHierarchy(false);
    const RyBone *bone = stage.added[37];
    stage.viewport->getCamera()->lookAt(bone->getWSPos() + RyVec3(0, 0, 40), bone->getWSPos());
    for (const int style : {3, int(RyDrawingStage::PickPass)}) {
        const auto bodies = RyDrawingStage::bodies(*stage.draw(style));
        QVERIFY(!bodies.empty());
        QVERIFY(bodies.size() < 70); // of 105, and as many ghosts in the picture
        bool isDrawn = false;
        for (const auto &body : bodies)
            isDrawn = isDrawn || (stage.world(body, 0) - bone->getWSPos()).length() < 1e-2f;
        QVERIFY(isDrawn);
    }
    const RyVec3 eye = bone->getWSPos() + RyVec3(0, 0, 400);
    stage.viewport->getCamera()->lookAt(eye, eye + RyVec3(0, 0, 40));
    for (const int style : {3, int(RyDrawingStage::PickPass)})
        QCOMPARE(stage.draw(style)->count("glVertex3f"), 0);
}

void RyDrawingCountsTest::handlesOutOfViewAreLeftOut()
{
    Stage stage;
    stage.tool->setBoneDrawMode(RyJointEditorTool::NoBones);
    // The end point and its handles are beyond the picture, those of the origin are not.
    const RyVec3 origin = stage.lShin->getWSPos();
    const RyVec3 away = (origin - stage.lShin->getWSEndPoint()).normalized();
    stage.viewport->getCamera()->lookAt(origin + away * 12.0f + RyVec3(0, 0, 60), origin + away * 12.0f);
    const auto recording = stage.draw(RyDrawingStage::PickPass);
    QSet<int> ids;
    for (const auto &primitive : recording->primitives)
        ids.insert(int(primitive.color().r));
    QCOMPARE(ids, (QSet<int>{1, 41, 42, 43}));
}

void RyDrawingCountsTest::linksOutOfViewAreLeftOut()
{
    Stage stage(50);
    stage.tool->setGhostBones(false);
    const RyBone *bone = stage.added[26]; // its link goes far, through the picture
    stage.viewport->getCamera()->lookAt(bone->getWSPos() + RyVec3(0, 0, 60), bone->getWSPos());
    size_t vertices = 0;
    bool isDrawn = false;
    const auto recording = stage.draw();
    for (const auto &primitive : recording->primitives) {
        if (!primitive.stipple)
            continue;
        vertices += primitive.vertices.size();
        for (size_t i = 0; i < primitive.vertices.size(); i += 2)
            isDrawn = isDrawn || (stage.world(primitive, i) - bone->getWSPos()).length() < 1e-2f;
    }
    QVERIFY(isDrawn);
    QVERIFY(vertices < 2 * 50);
}

void RyDrawingCountsTest::tilesLeaveOutWhatIsBeyond()
{
    Stage stage(200); // fewer than the code holds
    stage.viewport->resize(1600, 1200);
    const RyBone *bone = stage.added[151];
    const QPoint place = stage.pixelOf(bone->getWSPos() + (bone->getWSEndPoint() - bone->getWSPos()) * 0.15f);
    const int before = stage.viewport->counts().pickPasses;
    RyGLRecorder recorder;
    const int id = stage.viewport->Ry3DViewport::pickOnGizmo(place);
    recorder.stop();
    QVERIFY(id >= 47);
    QCOMPARE(stage.viewport->counts().pickPasses, before + 1);
    QCOMPARE(recorder.others["glReadPixels"], 1);
    const size_t bodies = RyDrawingStage::bodies(recorder).size();
    QVERIFY(bodies > 0);
    QVERIFY2(bodies < 80, qPrintable(QString::number(bodies)));
    for (const auto &primitive : recorder.primitives)
        QVERIFY2(primitive.color().r >= 47, "handles are far away");
}

void RyDrawingCountsTest::noCallWhileNothingChanges()
{
    Stage stage(300);
    Ry3DViewport viewport(stage.manager.get()); // its picks are no scripted ones
    viewport.resize(800, 600);
    viewport.getCamera()->lookAt({30, 80, 420}, {10, 70, 0});
    QPointF middle;
    QVERIFY(viewport.project(stage.lShin->getWSPos(), middle));
    const auto hover = [&](const QPoint &point) {
        QMouseEvent event(QEvent::MouseMove, point, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&viewport, &event);
    };
    hover(middle.toPoint());
    QVERIFY(stage.tool->hoveredId() != 0);
    const int passes = viewport.counts().pickPasses;
    RyOffscreenContext::instance().doneCurrent();
    QSet<int> ids;
    RyGLRecorder recorder;
    for (int y = -120; y <= 120; y += 3) {
        for (int x = -120; x <= 120; x += 3) {
            hover(middle.toPoint() + QPoint(x, y));
            ids.insert(stage.tool->hoveredId());
        }
    }
    recorder.stop();
    QVERIFY(ids.size() > 6); // handles, bones, and neither
    QCOMPARE(int(recorder.calls.size()), 0);
    QCOMPARE(recorder.countOther(), 0);
    QCOMPARE(viewport.counts().pickPasses, passes);
    QCOMPARE(RyGLContext::currentNumber(), quint64(0)); // no call could have done anything
    // A change is seen at the next move.
    stage.lShin->getZTransControl()->setValue(90.0f);
    hover(middle.toPoint());
    QVERIFY(viewport.counts().pickPasses > passes);
}

RY_TEST(RyDrawingCountsTest)

#include "tst_drawingCounts.moc"
