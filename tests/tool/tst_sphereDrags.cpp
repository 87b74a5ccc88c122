#include "support/RyTest.h"

#include "RyParamDragScene.h"

/// Drags of a sphere's rings, arrows and cubes against geometry worked out from the numbers of the scene.
class RySphereDragsTest : public QObject
{
    Q_OBJECT

private slots:
    void ringsFollowTheRay_data();
    void ringsFollowTheRay();
    void ringsKeepCenterAndSize();
    void ringWithoutDirection();
    void ringOfAFlatSphere();
    void arrows_data();
    void arrows();
    void cubes_data();
    void cubes();
    void cubesOfOneAxisShareTheLine();
    void cubeOfAMirroredSphere();
    void generalScale_data();
    void generalScale();
    void scaleStaysAboveZero();
    void scaleWithoutDistance();
    void rayAlongTheLine();

private:
    static bool isDynamic(int id) { return RyHandleTable::find(id)->target == RyHandle::DynamicSphere; }
    static const RyLegacyJointSphere &sphere(const RyLegacyJointParam &param, int id)
    {
        return isDynamic(id) ? *param.getDynamicSphere() : *param.getStaticSphere();
    }
    static const RyLegacyJointSphere &otherSphere(const RyLegacyJointParam &param, int id)
    {
        return isDynamic(id) ? *param.getStaticSphere() : *param.getDynamicSphere();
    }
    static std::array<float, 10> values(const RyLegacyJointSphere &sphere)
    {
        std::array<float, 10> values{};
        for (size_t i = 0; i < 10; ++i)
            values[i] = sphere.controls()[i]->getValue();
        return values;
    }
    static bool areNear(const std::array<float, 10> &a, const std::array<float, 10> &b, size_t from, size_t to)
    {
        for (size_t i = from; i < to; ++i) {
            if (std::abs(a[i] - b[i]) > 2e-4f * std::max(1.0f, std::abs(a[i])))
                return false;
        }
        return true;
    }
    static constexpr double eyeDistance = 180.0;
};

void RySphereDragsTest::ringsFollowTheRay_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("driver");
    for (int id = 5; id <= 10; ++id) {
        for (const char *driver : {"plain", "stretched", "mirrored", "mirrored sphere"})
            QTest::addRow("%d, %s", id, driver) << id << driver;
    }
}

// Where the ring was pressed the sphere points at the mouse afterwards, wherever around the ring the two are.
void RySphereDragsTest::ringsFollowTheRay()
{
    QFETCH(int, id);
    QFETCH(QString, driver);
    for (int from = 0; from < 360; from += 65) {
        for (int to = 10; to < 360; to += 85) {
            RyParamDragScene scene;
            if (driver == "stretched") {
                scene.doll.lHand->getXScaleControl()->setValue(1.6f);
                scene.doll.figure->getYScaleControl()->setValue(0.7f);
            } else if (driver == "mirrored") {
                scene.doll.figure->getXScaleControl()->setValue(-1.0f);
            }
            RyLegacyJointParam *param = scene.edit(RyParamDragScene::Type::Bend);
            if (driver == "mirrored sphere")
                sphere(*param, id).getYScaleControl()->setValue(-3.0f);
            const int axis = (id - 5) % 3;
            const auto onRing = [&](int degrees) {
                const double angle = degrees * M_PI / 180.0;
                return RyParamDragScene::axis((axis + 1) % 3, std::cos(angle)) +
                       RyParamDragScene::axis((axis + 2) % 3, std::sin(angle));
            };
            const Vec center = scene.center(isDynamic(id));
            const Vec pressed = scene.onSphere(isDynamic(id), onRing(from));
            const Vec target = center + (scene.onSphere(isDynamic(id), onRing(to)) - center) * 1.4;
            const Vec normal = unit(cross(pressed - center, scene.onSphere(isDynamic(id), onRing(from + 90)) - center));
            const Vec eye = center + normal * eyeDistance + unit(target - center) * 40.0 + Vec{7, -12, 9};
            const auto drag = scene.dragOf(id);
            drag->press(RyParamDragScene::ray(eye, pressed));
            drag->move(RyParamDragScene::ray(eye, target), {});
            const Vec now = scene.onSphere(isDynamic(id), onRing(from));
            const double error = distance(unit(now - center), unit(target - center));
            QVERIFY2(error < 2e-4, qPrintable(QString("from %1 to %2: %3").arg(from).arg(to).arg(error)));
            // The same values on the other side of the joint.
            QCOMPARE(values(sphere(*scene.counterpart(), id)), values(sphere(*param, id)));
        }
    }
}

void RySphereDragsTest::ringsKeepCenterAndSize()
{
    for (int id = 5; id <= 10; ++id) {
        RyParamDragScene scene;
        RyLegacyJointParam *param = scene.edit(RyParamDragScene::Type::Bend);
        const std::array<float, 10> before = values(sphere(*param, id));
        const std::array<float, 10> other = values(otherSphere(*param, id));
        const Vec center = scene.center(isDynamic(id));
        const Vec pressed = scene.onSphere(isDynamic(id), RyParamDragScene::axis((id - 4) % 3));
        const auto drag = scene.dragOf(id);
        drag->press(RyParamDragScene::ray({30, 150, 300}, pressed));
        drag->move(RyParamDragScene::ray({30, 150, 300}, pressed + Vec{3, 2, -1}), {});
        const std::array<float, 10> after = values(sphere(*param, id));
        QVERIFY(!areNear(after, before, 3, 6));
        QVERIFY(areNear(after, before, 0, 3));
        QVERIFY(areNear(after, before, 6, 10));
        QVERIFY(distance(scene.center(isDynamic(id)), center) < 1e-4);
        QCOMPARE(values(otherSphere(*param, id)), other);
        QCOMPARE(values(otherSphere(*scene.counterpart(), id)), other);
    }
}

void RySphereDragsTest::ringWithoutDirection()
{
    for (int id = 5; id <= 10; ++id) {
        RyParamDragScene scene;
        RyLegacyJointParam *param = scene.edit(RyParamDragScene::Type::Bend);
        const std::array<float, 10> before = values(sphere(*param, id));
        const Vec center = scene.center(isDynamic(id));
        const Vec eye{30, 150, 300};
        // Pressed at the centre; then back over it.
        for (const bool atPress : {true, false}) {
            const auto drag = scene.dragOf(id);
            const Vec aside = center + Vec{4, 3, -2};
            drag->press(RyParamDragScene::ray(eye, atPress ? center : aside));
            drag->move(RyParamDragScene::ray(eye, atPress ? aside : center), {});
            QCOMPARE(values(sphere(*param, id)), before);
        }
        // In the plane of the ring: finite.
        const Vec inPlane = scene.onSphere(isDynamic(id), RyParamDragScene::axis((id - 4) % 3));
        const auto drag = scene.dragOf(id);
        drag->press(RyParamDragScene::ray(eye, inPlane));
        drag->move(RyParamDragScene::ray(inPlane, center), {});
        for (const float value : values(sphere(*param, id)))
            QVERIFY(std::isfinite(value));
    }
}

void RySphereDragsTest::ringOfAFlatSphere()
{
    // The ring lies in the two axes that still have an extent.
    RyParamDragScene scene;
    RyLegacyJointParam *param = scene.edit(RyParamDragScene::Type::Bend);
    param->getDynamicSphere()->getXScaleControl()->setValue(0.0f);
    const Vec center = scene.center(true);
    const Vec pressed = scene.onSphere(true, {0, 1, 0});
    const Vec target = scene.onSphere(true, {0, 0.5, 0.9});
    const Vec eye = center + unit(cross(pressed - center, target - center)) * eyeDistance;
    auto drag = scene.dragOf(5);
    drag->press(RyParamDragScene::ray(eye, pressed));
    drag->move(RyParamDragScene::ray(eye, target), {});
    QVERIFY(distance(unit(scene.onSphere(true, {0, 1, 0}) - center), unit(target - center)) < 2e-4);
    // The others are lines: there is nothing to turn.
    const std::array<float, 10> before = values(*param->getDynamicSphere());
    drag = scene.dragOf(6);
    drag->press(RyParamDragScene::ray(eye, pressed));
    drag->move(RyParamDragScene::ray(eye, target), {});
    QCOMPARE(values(*param->getDynamicSphere()), before);
}

void RySphereDragsTest::arrows_data()
{
    QTest::addColumn<int>("id");
    for (int id = 11; id <= 16; ++id)
        QTest::addRow("%d", id) << id;
}

void RySphereDragsTest::arrows()
{
    QFETCH(int, id);
    for (const float figureScale : {1.0f, 2.0f}) {
        RyParamDragScene scene(figureScale);
        RyLegacyJointParam *param = scene.edit(RyParamDragScene::Type::Bend);
        const std::array<float, 10> before = values(sphere(*param, id));
        const std::array<float, 10> other = values(otherSphere(*param, id));
        const int axis = (id - 11) % 3;
        const Vec center = scene.center(isDynamic(id));
        const Vec direction = unit(scene.direction(RyParamDragScene::axis(axis)));
        const RyLine3 press = RyParamDragScene::ray({30, 150, 300}, center + direction * 2.0);
        const RyLine3 move = RyParamDragScene::ray({30, 150, 300}, center + direction * 9.0 + Vec{1, -1, 2});
        const auto drag = scene.dragOf(id);
        drag->press(press);
        drag->move(move, {});
        const double way =
            RyParamDragScene::along(center, direction, move) - RyParamDragScene::along(center, direction, press);
        QVERIFY(std::abs(way) > 3.0);
        std::array<float, 10> expected = before;
        expected[size_t(axis)] += float(way);
        const std::array<float, 10> after = values(sphere(*param, id));
        QVERIFY(areNear(after, expected, size_t(axis), size_t(axis) + 1));
        expected[size_t(axis)] = after[size_t(axis)];
        QCOMPARE(after, expected);
        QCOMPARE(values(sphere(*scene.counterpart(), id)), after);
        QCOMPARE(values(otherSphere(*param, id)), other);
        if (figureScale == 1.0f)
            QVERIFY(distance(scene.center(isDynamic(id)), center + direction * way) < 1e-3);
    }
}

void RySphereDragsTest::cubes_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<float>("general");
    for (int id = 17; id <= 28; ++id) {
        for (const float general : {1.0f, 2.0f, -0.5f})
            QTest::addRow("%d, general scale %g", id, double(general)) << id << general;
    }
}

void RySphereDragsTest::cubes()
{
    QFETCH(int, id);
    QFETCH(float, general);
    RyParamDragScene scene(1.3f, general);
    RyLegacyJointParam *param = scene.edit(RyParamDragScene::Type::Bend);
    const int axis = (id - 17) % 3;
    const double side = ((id - 17) / 3) % 2 == 0 ? 1.0 : -1.0;
    const std::array<float, 10> before = values(sphere(*param, id));
    const Vec cube = scene.onSphere(isDynamic(id), RyParamDragScene::axis(axis, side));
    const Vec center = scene.center(isDynamic(id));
    const Vec outward = unit(cube - center);
    const Vec eye = cube + Vec{20, 10, 200};
    const RyLine3 move = RyParamDragScene::ray(eye, cube + outward * 2.5 + Vec{0.5, 1, -1});
    const auto drag = scene.dragOf(id);
    drag->press(RyParamDragScene::ray(eye, cube));
    drag->move(move, {});
    const Vec target = center + outward * RyParamDragScene::along(center, outward, move);
    QVERIFY(distance(cube, target) > 1.0);
    QVERIFY(distance(scene.onSphere(isDynamic(id), RyParamDragScene::axis(axis, side)), target) < 2e-3);
    const std::array<float, 10> after = values(sphere(*param, id));
    std::array<float, 10> expected = before;
    expected[size_t(7 + axis)] = after[size_t(7 + axis)];
    QCOMPARE(after, expected);
    QCOMPARE(values(sphere(*scene.counterpart(), id)), after);
}

void RySphereDragsTest::cubesOfOneAxisShareTheLine()
{
    RyParamDragScene scene;
    scene.edit(RyParamDragScene::Type::Bend);
    for (int id : {17, 18, 19, 23, 24, 25}) {
        const RyLine3 ray = RyParamDragScene::ray({30, 150, 300}, scene.center(isDynamic(id)) + Vec{3, 5, -1});
        QCOMPARE(scene.dragOf(id)->dragVector(ray), scene.dragOf(id + 3)->dragVector(ray));
        QVERIFY(scene.dragOf(id)->dragVector(ray) != RyVec3());
    }
    const RyLine3 ray = RyParamDragScene::ray({30, 150, 300}, scene.center(true) + Vec{3, 5, -1});
    QVERIFY(scene.dragOf(17)->dragVector(ray) != scene.dragOf(23)->dragVector(ray));
}

void RySphereDragsTest::cubeOfAMirroredSphere()
{
    // Two mirrored axes are a half turn as well; the controls must stay the ones that they were.
    RyParamDragScene scene;
    RyLegacyJointParam *param = scene.edit(RyParamDragScene::Type::Bend);
    param->getDynamicSphere()->getXScaleControl()->setValue(-4.0f);
    param->getDynamicSphere()->getYScaleControl()->setValue(-6.0f);
    const Vec cube = scene.onSphere(true, {1, 0, 0});
    const Vec center = scene.center(true);
    const Vec eye = cube + Vec{20, 10, 200};
    const auto drag = scene.dragOf(17);
    drag->press(RyParamDragScene::ray(eye, cube));
    drag->move(RyParamDragScene::ray(eye, center + (cube - center) * 1.5), {});
    QVERIFY(std::abs(param->getDynamicSphere()->getXScaleControl()->getValue() + 6.0f) < 1e-3f);
    QCOMPARE(param->getDynamicSphere()->getYScaleControl()->getValue(), -6.0f);
    QVERIFY(distance(scene.onSphere(true, {1, 0, 0}), center + (cube - center) * 1.5) < 2e-3);
}

void RySphereDragsTest::generalScale_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<float>("general");
    for (int id : {39, 40}) {
        for (const float general : {1.0f, 2.0f})
            QTest::addRow("%d, general scale %g", id, double(general)) << id << general;
    }
}

void RySphereDragsTest::generalScale()
{
    QFETCH(int, id);
    QFETCH(float, general);
    RyParamDragScene scene(1.3f, general);
    RyLegacyJointParam *param = scene.edit(RyParamDragScene::Type::Bend);
    QCOMPARE(isDynamic(id), id == 40);
    const std::array<float, 10> before = values(sphere(*param, id));
    const Vec center = scene.center(isDynamic(id));
    Vec sum{};
    double radius = 0;
    for (int k = 0; k < 3; ++k) {
        const Vec image = scene.onSphere(isDynamic(id), RyParamDragScene::axis(k)) - center;
        sum = sum + unit(image);
        radius += length(image) / 3.0;
    }
    const Vec diagonal = unit(sum);
    const RyLine3 press = RyParamDragScene::ray({30, 150, 300}, center + diagonal * 0.2);
    const auto drag = scene.dragOf(id);
    drag->press(press);
    for (const double way : {3.0, 8.0, -2.0}) {
        const RyLine3 move = RyParamDragScene::ray({30, 150, 300}, center + diagonal * way + Vec{1, 0, -1});
        drag->move(move, {});
        const double factor =
            1.0 + (RyParamDragScene::along(center, diagonal, move) - RyParamDragScene::along(center, diagonal, press)) /
                      radius;
        std::array<float, 10> expected = before;
        for (size_t k = 7; k < 10; ++k)
            expected[k] = float(double(before[k]) * factor);
        const std::array<float, 10> after = values(sphere(*param, id));
        QVERIFY(areNear(after, expected, 7, 10));
        QVERIFY(areNear(after, before, 0, 7));
        QCOMPARE(values(sphere(*scene.counterpart(), id)), after);
    }
}

void RySphereDragsTest::scaleStaysAboveZero()
{
    RyParamDragScene scene;
    RyLegacyJointParam *param = scene.edit(RyParamDragScene::Type::Bend);
    const float start = param->getDynamicSphere()->getXScaleControl()->getValue();
    const Vec center = scene.center(true);
    for (int id : {17, 40}) {
        const Vec out =
            id == 17
                ? unit(scene.onSphere(true, {1, 0, 0}) - center)
                : toVec(scene.dragOf(40)->dragVector(RyParamDragScene::ray({30, 150, 300}, center + Vec{20, 20, 20})));
        const Vec eye = center + Vec{20, 10, 200};
        const auto drag = scene.dragOf(id);
        drag->press(RyParamDragScene::ray(eye, center + unit(out) * 5.0));
        float last = 1e9f;
        for (const double way : {4.0, 2.0, 0.5, -3.0, -30.0}) {
            drag->move(RyParamDragScene::ray(eye, center + unit(out) * way), {});
            const float now = param->getDynamicSphere()->getXScaleControl()->getValue();
            QVERIFY(now <= last);
            QVERIFY(now >= 0.000999f * start);
            last = now;
        }
        QVERIFY(std::abs(last - 0.001f * start) < 1e-5f);
        drag->cancel();
        QCOMPARE(param->getDynamicSphere()->getXScaleControl()->getValue(), start);
    }
}

void RySphereDragsTest::scaleWithoutDistance()
{
    RyParamDragScene scene;
    RyLegacyJointParam *param = scene.edit(RyParamDragScene::Type::Bend);
    for (const bool isFlat : {false, true}) {
        if (isFlat) {
            for (RyFloatProperty *control :
                 {param->getDynamicSphere()->getXScaleControl(), param->getDynamicSphere()->getYScaleControl(),
                  param->getDynamicSphere()->getZScaleControl()})
                control->setValue(0.0f);
        }
        const std::array<float, 10> before = values(*param->getDynamicSphere());
        const Vec center = scene.center(true);
        const Vec eye = center + Vec{0, 0, 200};
        for (int id : {17, 22, 40}) {
            if (id == 40 && !isFlat)
                continue;
            const auto drag = scene.dragOf(id);
            // At the centre, as exactly as rays can be.
            drag->press(isFlat ? RyParamDragScene::ray(eye, center)
                               : RyLine3(RyParamDragScene::fromVec(center),
                                         RyParamDragScene::fromVec(center) + RyVec3(0.3f, 0.1f, -2)));
            drag->move(RyParamDragScene::ray(eye, center + Vec{8, 5, 0}), {});
            for (const float value : values(*param->getDynamicSphere()))
                QVERIFY(std::isfinite(value));
            if (isFlat)
                QCOMPARE(values(*param->getDynamicSphere()), before);
            drag->cancel();
            QCOMPARE(values(*param->getDynamicSphere()), before);
        }
    }
    param->getDynamicSphere()->getScaleControl()->setValue(0.0f);
    const std::array<float, 10> before = values(*param->getDynamicSphere());
    const auto drag = scene.dragOf(40);
    drag->press(RyParamDragScene::ray({30, 150, 300}, scene.center(true)));
    drag->move(RyParamDragScene::ray({30, 150, 300}, scene.center(true) + Vec{9, 3, 1}), {});
    QCOMPARE(values(*param->getDynamicSphere()), before);
}

void RySphereDragsTest::rayAlongTheLine()
{
    RyParamDragScene scene;
    RyLegacyJointParam *param = scene.edit(RyParamDragScene::Type::Bend);
    const std::array<float, 10> before = values(*param->getDynamicSphere());
    const Vec center = scene.center(true);
    const Vec cube = scene.onSphere(true, {1, 0, 0});
    const auto drag = scene.dragOf(17);
    drag->press(RyParamDragScene::ray(cube + Vec{20, 10, 200}, cube));
    const Vec aside{3, 1, 2};
    drag->move(RyParamDragScene::ray(center + aside, cube + aside), {});
    QCOMPARE(values(*param->getDynamicSphere()), before);
    // Of an arrow: the anchor.
    const Vec along = scene.direction({0, 1, 0});
    QCOMPARE(scene.dragOf(12)->dragVector(RyParamDragScene::ray(center + aside, center + aside + along)), RyVec3());
}

RY_TEST(RySphereDragsTest)

#include "tst_sphereDrags.moc"
