#include "support/RyTest.h"

#include "RyToolScene.h"

#include "pluginsource/RyJointTools/tool/drags/RyDragContext.h"
#include "pluginsource/RyJointTools/tool/drags/RyPointDrag.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/undo/RyUndoStack.h"

/// Drags along an axis that points at the eye: nothing can be told from the mouse, and nothing may be thrown away.
class RyAxisAtEyeTest : public QObject
{
    Q_OBJECT

private slots:
    void nothingMoves_data();
    void nothingMoves();
    void besideItThePointFollows();
    void callersLearnOfIt();
    void closeToTheEye();
    void statusLineSaysSo();

private:
    /// Puts the eye where the axis of a handle leads, turned away from it by so many degrees.
    static void lookAlong(RyToolScene &scene, const RyVec3 &anchor, const RyVec3 &axis, float degrees,
                          bool orthographic)
    {
        const RyVec3 aside = axis.cross(RyVec3(0.3f, 0.8f, -0.52f)).normalized();
        const float angle = degrees * 0.01745329f;
        const RyVec3 way = axis * std::cos(angle) + aside * std::sin(angle);
        scene.viewport->getCamera()->lookAt(anchor + way * 240.0f, anchor, aside);
        scene.viewport->getCamera()->setOrthographic(orthographic);
    }
};

void RyAxisAtEyeTest::nothingMoves_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<bool>("orthographic");
    for (int id = 41; id <= 46; ++id) {
        QTest::addRow("%d", id) << id << false;
        QTest::addRow("%d, orthographic", id) << id << true;
    }
}

void RyAxisAtEyeTest::nothingMoves()
{
    QFETCH(int, id);
    QFETCH(bool, orthographic);
    RyToolScene scene;
    scene.pose();
    scene.figure->getScaleControl()->setValue(1.3f);
    scene.lShin->setOrigin({12, 51, 4});
    scene.tool->setPropagateTranslation(true);
    scene.select(scene.lShin);
    const bool ofOrigin = id <= 43;
    const RyVec3 anchor = ofOrigin ? scene.lShin->getWSPos() : scene.lShin->getWSEndPoint();
    const RyQuat frame = ofOrigin ? scene.lThigh->getWSRot() : scene.lShin->getWSRot();
    const RyVec3 axis = frame.multVec(RyVec3::axis((id - 41) % 3));
    const QString before = scene.dump();
    for (const float degrees : {0.0f, 0.3f, 1.3f, 179.0f}) {
        lookAlong(scene, anchor, axis, degrees, orthographic);
        const QPoint from = scene.pixelOf(anchor);
        scene.press(id, from);
        // Little ways, and far beyond the cone in which the two lines count as parallel.
        for (const QPoint &way : {QPoint(1, 0), QPoint(9, -7), QPoint(-120, 80), QPoint(300, 250)}) {
            scene.move(from + way);
            QCOMPARE(scene.dump(), before);
        }
        scene.release();
        QCOMPARE(scene.dump(), before);
    }
}

void RyAxisAtEyeTest::besideItThePointFollows()
{
    RyToolScene scene;
    scene.pose();
    scene.select(scene.lShin);
    const RyVec3 anchor = scene.lShin->getWSEndPoint();
    const RyVec3 axis = scene.lShin->getWSRot().multVec(RyVec3(0, 1, 0));
    for (const float degrees : {5.0f, 60.0f, 173.0f}) {
        lookAlong(scene, anchor, axis, degrees, true);
        const QPoint from = scene.pixelOf(anchor);
        const QPoint to = scene.pixelOf(anchor + axis * 8.0f);
        QVERIFY(from != to);
        scene.press(45, from);
        scene.move(to);
        const float way = (scene.lShin->getWSEndPoint() - anchor).dot(axis);
        QVERIFY2(std::abs(way - 8.0f) < 4.0f, qPrintable(QString::number(double(way))));
        scene.press(45, from, Qt::RightButton);
        QCOMPARE(scene.lShin->getWSEndPoint(), anchor);
    }
}

void RyAxisAtEyeTest::callersLearnOfIt()
{
    RyToolScene scene;
    scene.pose();
    const RyVec3 anchor = scene.lShin->getWSEndPoint();
    lookAlong(scene, anchor, scene.lShin->getWSRot().multVec(RyVec3(0, 0, 1)), 1.0f, false);
    RyDragContext context{scene.lShin};
    // Nobody looks yet.
    QVERIFY(!RyPointDrag(context, RyPointDrag::EndPoint, 2).pointsAtEye());
    context.camera = scene.viewport->getCamera();
    QVERIFY(RyPointDrag(context, RyPointDrag::EndPoint, 2).pointsAtEye());
    QVERIFY(!RyPointDrag(context, RyPointDrag::EndPoint, 1).pointsAtEye());
    QVERIFY(!RyPointDrag(context, RyPointDrag::EndPoint, -1).pointsAtEye());
    QVERIFY(!RyHandleDrag(scene.lShin).pointsAtEye());
}

void RyAxisAtEyeTest::closeToTheEye()
{
    // The handle counts, where the axis begins, not a place a little farther along.
    RyToolScene scene;
    scene.pose();
    const RyVec3 anchor = scene.lShin->getWSEndPoint();
    const RyVec3 axis = scene.lShin->getWSRot().multVec(RyVec3(0, 0, 1));
    RyCamera *camera = scene.viewport->getCamera();
    RyDragContext context{scene.lShin};
    context.camera = camera;
    const auto isAtEye = [&](float degrees) {
        lookAlong(scene, anchor, axis, degrees, false);
        camera->lookAt(anchor + (camera->getWSPos() - anchor).normalized() * 2.5f, anchor, RyVec3(0, 1, 0));
        return RyPointDrag(context, RyPointDrag::EndPoint, 2).pointsAtEye();
    };
    QVERIFY(isAtEye(1.2f));
    QVERIFY(!isAtEye(1.8f));
}

void RyAxisAtEyeTest::statusLineSaysSo()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    const RyVec3 anchor = scene.lShin->getWSEndPoint();
    lookAlong(scene, anchor, RyVec3(0, 0, 1), 1.0f, false);
    const QPoint from = scene.pixelOf(anchor);
    const QString said = QStringLiteral("This axis points at the eye and moves nothing; turn the view");
    scene.press(46, from);
    QVERIFY(scene.tool->getStatusText().contains(said));
    scene.move(from + QPoint(20, 5));
    QVERIFY(scene.tool->getStatusText().contains(said));
    QVERIFY(scene.tool->getStatusText().contains(QStringLiteral("right click or Esc cancels")));
    scene.release();
    QVERIFY(!scene.tool->getStatusText().contains(said));
    scene.press(45, from);
    scene.move(from + QPoint(20, 5));
    QVERIFY(!scene.tool->getStatusText().contains(said));
    scene.release();
}

RY_TEST(RyAxisAtEyeTest)

#include "tst_axisAtEye.moc"
