#include "support/RyTest.h"

#include "RyPlainVec.h"
#include "RyToolScene.h"

#include "pluginsource/RyJointTools/tool/drags/RyDragContext.h"
#include "pluginsource/RyJointTools/tool/drags/RyPointDrag.h"
#include "rycore/base/RyFloatProperty.h"

namespace {

/// The camera of the test scene: eye, target and opening angle as they were given, not as the library keeps them.
struct Eye
{
    Vec place{60, 120, 260};
    Vec forward = unit(Vec{0, 60, 0} - place);
    Vec right = unit(cross(forward, Vec{0, 1, 0}));
    Vec up = cross(right, forward);
    double fieldOfView = 0.6;

    Vec rayThrough(const QPoint &pixel) const
    {
        const double half = std::tan(fieldOfView / 2);
        const double x = (2.0 * pixel.x() / 800 - 1) * half * 800 / 600;
        const double y = (1 - 2.0 * pixel.y() / 600) * half;
        return unit(forward + right * x + up * y);
    }
    Vec onPlane(const QPoint &pixel, const Vec &anchor) const
    {
        const Vec ray = rayThrough(pixel);
        return place + ray * (dot(anchor - place, forward) / dot(ray, forward));
    }
    /// Distance from the anchor along a unit axis to where the axis is nearest to the ray.
    double alongAxis(const QPoint &pixel, const Vec &anchor, const Vec &axis) const
    {
        const Vec ray = rayThrough(pixel);
        const Vec between = anchor - place;
        const double b = dot(axis, ray);
        return (b * dot(ray, between) - dot(axis, between)) / (1 - b * b);
    }
};

constexpr double reach = 2e-3; // centimetres, at some 300 from the camera in single precision

} // namespace

/// Drags of origin and end point against analytic geometry.
class RyPointDragTest : public QObject
{
    Q_OBJECT

private slots:
    void viewPlane_data();
    void viewPlane();
    void axes_data();
    void axes();
    void originUnposed();
    void scaledFigure();
    void oneAxisChangesOneNumber();
    void outAndBack_data();
    void outAndBack();
    void keepsLength_data();
    void keepsLength();
    void keepLengthWithoutDirection();
    void defaultsStay();
    void otherViewport();
    void cameraMovesMeanwhile();
    void parallelRay();
    void proposeAndApply();
    void valuesAreRecordedOnce();
};

void RyPointDragTest::viewPlane_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<bool>("posed");
    QTest::addColumn<bool>("scaled");
    QTest::newRow("end point") << 2 << false << false;
    QTest::newRow("end point, posed") << 2 << true << false;
    QTest::newRow("end point, scaled") << 2 << false << true;
    QTest::newRow("end point, posed and scaled") << 2 << true << true;
    QTest::newRow("origin") << 1 << false << false;
}

void RyPointDragTest::viewPlane()
{
    QFETCH(int, id);
    QFETCH(bool, posed);
    QFETCH(bool, scaled);
    RyToolScene scene;
    if (posed)
        scene.pose();
    if (scaled) {
        scene.figure->getScaleControl()->setValue(1.25f);
        scene.lThigh->getXScaleControl()->setValue(0.7f);
        scene.lShin->getYScaleControl()->setValue(1.3f);
    }
    const Eye eye;
    for (RyBone *bone : {scene.hip, scene.lThigh, scene.lShin, scene.lFoot}) {
        scene.select(bone);
        const auto place = [&] { return toVec(id == 2 ? bone->getWSEndPoint() : bone->getWSPos()); };
        const Vec anchor = place();
        const QPoint from = scene.pixelOf(id == 2 ? bone->getWSEndPoint() : bone->getWSPos());
        const QPoint to = from + QPoint(37, -21);
        scene.press(id, from);
        scene.move(to);
        const Vec expected = anchor + eye.onPlane(to, anchor) - eye.onPlane(from, anchor);
        QVERIFY2(distance(place(), expected) < reach, qPrintable(bone->getName()));
        scene.release();
    }
}

void RyPointDragTest::axes_data()
{
    QTest::addColumn<int>("id");
    for (int id = 44; id <= 46; ++id)
        QTest::addRow("%d", id) << id;
}

void RyPointDragTest::axes()
{
    QFETCH(int, id);
    RyToolScene scene;
    scene.pose();
    const Eye eye;
    for (RyBone *bone : {scene.hip, scene.lThigh, scene.lShin, scene.lFoot}) {
        scene.select(bone);
        const Vec anchor = toVec(bone->getWSEndPoint());
        // The axis as the figure's points move: where a step of one along it in figure space leads.
        const RyMatrix4 transform = bone->getWSTransform();
        const Vec axis = unit(toVec(transform.multDirMatrix(RyVec3::axis(id - 44))));
        const RyVec3 start = bone->getEndPoint();
        const QPoint from = scene.pixelOf(bone->getWSEndPoint()) + QPoint(3, 2);
        const QPoint to = from + QPoint(-25, 18);
        scene.press(id, from);
        scene.move(to);
        const double way = eye.alongAxis(to, anchor, axis) - eye.alongAxis(from, anchor, axis);
        QVERIFY2(distance(toVec(bone->getWSEndPoint()), anchor + axis * way) < reach * (1 + std::abs(way) / 50),
                 qPrintable(bone->getName()));
        RyVec3 expected = start;
        expected[id - 44] += float(way);
        QVERIFY(distance(toVec(bone->getEndPoint()), toVec(expected)) < reach * (1 + std::abs(way) / 50));
        scene.release();
    }
}

void RyPointDragTest::originUnposed()
{
    RyToolScene scene;
    // The figure is turned and moved, the bone itself is not posed: the origin follows along the parent's axes.
    scene.figure->getYRotControl()->setValue(35.0f);
    scene.figure->getXTransControl()->setValue(12.0f);
    scene.hip->getZRotControl()->setValue(-20.0f);
    const Eye eye;
    for (int id = 41; id <= 43; ++id) {
        scene.select(scene.lThigh);
        const Vec anchor = toVec(scene.lThigh->getWSPos());
        const Vec axis = unit(toVec(scene.hip->getWSTransform().multDirMatrix(RyVec3::axis(id - 41))));
        const QPoint from = scene.pixelOf(scene.lThigh->getWSPos());
        const QPoint to = from + QPoint(22, 31);
        scene.press(id, from);
        scene.move(to);
        const double way = eye.alongAxis(to, anchor, axis) - eye.alongAxis(from, anchor, axis);
        QVERIFY(std::abs(way) > 0.5);
        QVERIFY(distance(toVec(scene.lThigh->getWSPos()), anchor + axis * way) < reach * (1 + std::abs(way) / 50));
        scene.release();
    }
}

void RyPointDragTest::scaledFigure()
{
    RyToolScene scene;
    scene.figure->getScaleControl()->setValue(0.8f);
    scene.figure->getYRotControl()->setValue(35.0f);
    scene.figure->getXTransControl()->setValue(12.0f);
    const Eye eye;
    scene.select(scene.lThigh);
    const RyVec3 start = scene.lThigh->getOrigin();
    const Vec anchor = toVec(scene.lThigh->getWSPos());
    const QPoint from = scene.pixelOf(scene.lThigh->getWSPos());
    const QPoint to = from + QPoint(37, -21);
    scene.press(1, from);
    scene.move(from);
    QCOMPARE(scene.lThigh->getOrigin(), start);
    scene.move(to);
    const Vec expected = anchor + eye.onPlane(to, anchor) - eye.onPlane(from, anchor);
    QVERIFY(distance(toVec(scene.lThigh->getWSPos()), expected) < reach);
    // In the figure's own measure the way is longer than in the world.
    const double wayInWorld = distance(expected, anchor);
    const double wayInFigure = double((scene.lThigh->getOrigin() - start).length());
    QVERIFY(std::abs(wayInFigure - wayInWorld / 0.8) < reach);
    scene.release();
}

void RyPointDragTest::oneAxisChangesOneNumber()
{
    for (int id = 41; id <= 46; ++id) {
        RyToolScene scene;
        scene.select(scene.lShin);
        const RyVec3 origin = scene.lShin->getOrigin();
        const RyVec3 endPoint = scene.lShin->getEndPoint();
        scene.drag(id, {400, 300}, {431, 277});
        const bool ofOrigin = id <= 43;
        const int axis = (id - 41) % 3;
        const RyVec3 way = ofOrigin ? scene.lShin->getOrigin() - origin : scene.lShin->getEndPoint() - endPoint;
        QVERIFY(std::abs(way[axis]) > 0.1f);
        QCOMPARE(way[(axis + 1) % 3], 0.0f);
        QCOMPARE(way[(axis + 2) % 3], 0.0f);
        QCOMPARE(ofOrigin ? scene.lShin->getEndPoint() : scene.lShin->getOrigin(), ofOrigin ? endPoint : origin);
        QCOMPARE(scene.lFoot->getOrigin(), RyVec3(10, 8, -1));
    }
}

void RyPointDragTest::outAndBack_data()
{
    QTest::addColumn<int>("id");
    for (int id : {1, 2, 41, 42, 43, 44, 45, 46})
        QTest::addRow("%d", id) << id;
}

void RyPointDragTest::outAndBack()
{
    QFETCH(int, id);
    RyToolScene scene;
    scene.pose();
    scene.tool->setPropagateTranslation(true);
    scene.select(scene.lThigh);
    const QString before = scene.dump();
    scene.press(id, {380, 290});
    scene.move({500, 90});
    QVERIFY(scene.dump() != before);
    scene.move({13, 580});
    scene.move({380, 290});
    QCOMPARE(scene.dump(), before);
    scene.release();
}

void RyPointDragTest::keepsLength_data()
{
    outAndBack_data();
}

void RyPointDragTest::keepsLength()
{
    QFETCH(int, id);
    RyToolScene scene;
    scene.pose();
    scene.select(scene.lShin);
    const bool ofOrigin = id == 1 || (id >= 41 && id <= 43);
    const auto moved = [&] { return ofOrigin ? scene.lShin->getOrigin() : scene.lShin->getEndPoint(); };
    const auto other = [&] { return ofOrigin ? scene.lShin->getEndPoint() : scene.lShin->getOrigin(); };
    const RyVec3 otherBefore = other();
    const float boneLength = (moved() - other()).length();
    scene.press(id, {400, 300});
    scene.move({470, 260});
    const RyVec3 freely = moved();
    scene.move({470, 260}, Qt::ControlModifier);
    QCOMPARE(other(), otherBefore);
    QVERIFY(std::abs((moved() - other()).length() - boneLength) < 1e-5f * boneLength);
    // The direction is that of the free move.
    QVERIFY(((moved() - other()).normalized() - (freely - other()).normalized()).length() < 1e-5f);
    scene.move({470, 260});
    QCOMPARE(moved(), freely);
    scene.release();
}

void RyPointDragTest::keepLengthWithoutDirection()
{
    RyToolScene scene;
    scene.lShin->setEndPoint(scene.lShin->getOrigin());
    const RyPointDrag drag(RyDragContext{scene.lShin}, RyPointDrag::EndPoint, -1);
    QCOMPARE(drag.propose(RyVec3(0, 0, 0), true), RyVec3(11, 50, 2));
    QCOMPARE(drag.propose(RyVec3(0, 3, 0), true), RyVec3(11, 50, 2)); // a start length of zero
}

void RyPointDragTest::defaultsStay()
{
    RyToolScene scene;
    scene.select(scene.lShin);
    for (int id : {1, 2, 41, 42, 43, 44, 45, 46})
        scene.drag(id, {400, 300}, {430, 310});
    QCOMPARE(scene.lShin->getOrigin(true), RyVec3(11, 50, 2));
    QCOMPARE(scene.lShin->getEndPoint(true), RyVec3(10, 8, -1));
    QVERIFY(scene.lShin->getOrigin() != RyVec3(11, 50, 2));
}

void RyPointDragTest::otherViewport()
{
    RyToolScene scene;
    const Eye eye;
    scene.select(scene.lShin);
    // A second view of another size, from behind.
    RyScriptedViewport other(scene.manager.get());
    other.resize(300, 500);
    other.getCamera()->lookAt({-100, 20, -200}, {0, 60, 0});
    const Vec anchor = toVec(scene.lShin->getWSEndPoint());
    const QPoint from = scene.pixelOf(scene.lShin->getWSEndPoint());
    const QPoint to = from + QPoint(37, -21);
    other.makeCurrent();
    scene.press(2, from);
    other.makeCurrent();
    QMouseEvent event(QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QVERIFY(scene.tool->mouseMove(&other, &event, RyViewMouseModifier::None));
    const Vec expected = anchor + eye.onPlane(to, anchor) - eye.onPlane(from, anchor);
    QVERIFY(distance(toVec(scene.lShin->getWSEndPoint()), expected) < reach);
    scene.release();
}

void RyPointDragTest::cameraMovesMeanwhile()
{
    RyToolScene scene;
    const Eye eye;
    scene.select(scene.lShin);
    const Vec anchor = toVec(scene.lShin->getWSEndPoint());
    const QPoint from = scene.pixelOf(scene.lShin->getWSEndPoint());
    scene.press(2, from);
    scene.move(from + QPoint(5, 5));
    // From then on rays start elsewhere, and still meet the plane that faced the camera at the press.
    scene.viewport->getCamera()->lookAt({160, 80, 180}, {0, 60, 0});
    Eye moved;
    moved.place = {160, 80, 180};
    moved.forward = unit(Vec{0, 60, 0} - moved.place);
    moved.right = unit(cross(moved.forward, Vec{0, 1, 0}));
    moved.up = cross(moved.right, moved.forward);
    const QPoint to(430, 320);
    scene.move(to);
    const Vec ray = moved.rayThrough(to);
    const Vec hit = moved.place + ray * (dot(anchor - moved.place, eye.forward) / dot(ray, eye.forward));
    const Vec expected = anchor + hit - eye.onPlane(from, anchor);
    QVERIFY(distance(toVec(scene.lShin->getWSEndPoint()), expected) < reach);
    QVERIFY(std::abs(dot(toVec(scene.lShin->getWSEndPoint()) - anchor, eye.forward)) < reach);
    scene.release();
}

void RyPointDragTest::parallelRay()
{
    RyToolScene scene;
    const RyPointDrag along(RyDragContext{scene.lShin}, RyPointDrag::EndPoint, 1);
    // Parallel to the axis: the line's anchor.
    QCOMPARE(along.dragVector(RyLine3(RyVec3(50, 0, 0), RyVec3(50, 7, 0))), RyVec3(0, 0, 0));
    // Parallel to the view plane, whose normal is the camera's Z: the ray's origin.
    const RyPointDrag plane(RyDragContext{scene.lShin}, RyPointDrag::EndPoint, -1);
    QCOMPARE(plane.dragVector(RyLine3(RyVec3(50, 0, 3), RyVec3(51, 0, 3))), RyVec3(50, 0, 3) - RyVec3(10, 8, -1));
}

void RyPointDragTest::proposeAndApply()
{
    RyToolScene scene;
    const QString before = scene.dump();
    RyPointDrag drag(RyDragContext{scene.lShin}, RyPointDrag::Origin, 0);
    QCOMPARE(drag.propose(RyVec3(2, 0, 0), false), RyVec3(13, 50, 2));
    QCOMPARE(scene.dump(), before);
    // Rays across the axis, at 1 and at 4 from the anchor.
    drag.press(RyLine3(RyVec3(12, 50, 9), RyVec3(12, 50, 8)));
    QCOMPARE(scene.dump(), before);
    drag.move(RyLine3(RyVec3(15, 50, 9), RyVec3(15, 50, 8)), {});
    QCOMPARE(scene.lShin->getOrigin(), RyVec3(14, 50, 2));
    drag.cancel();
    QCOMPARE(scene.dump(), before);
    drag.finish(QStringLiteral("too late"));
    QCOMPARE(ryUndoStack()->count(), 0);
}

void RyPointDragTest::valuesAreRecordedOnce()
{
    const auto entriesOfADrag = [](int moves) {
        RyToolScene scene;
        scene.select(scene.lShin);
        scene.press(2, {400, 300});
        for (int i = 1; i <= moves; ++i)
            scene.move({400 + i % 120, 300 - i % 90});
        scene.move({437, 271});
        scene.release();
        const int steps = ryUndoStack()->count();
        return steps == 1 ? ryUndoStack()->entryCount(0) : -1;
    };
    const int few = entriesOfADrag(10);
    QCOMPARE(few, 3); // the three numbers of the end point
    QCOMPARE(entriesOfADrag(1000), few);
}

RY_TEST(RyPointDragTest)

#include "tst_RyPointDrag.moc"
