#include "support/RyTest.h"

#include "RyParamDragScene.h"

/// Drags of bend rays and of the ends of zones against geometry worked out from the numbers of the scene.
class RyAngleAndZoneDragsTest : public QObject
{
    Q_OBJECT

private slots:
    void anglesAreThoseOfTheDrawnRays_data();
    void anglesAreThoseOfTheDrawnRays();
    void neighboursComeBack();
    void neighboursStayWithoutPushing();
    void angleWithoutDirection();
    void crossedAnglesComeBack();
    void twist_data();
    void twist();
    void smoothZones_data();
    void smoothZones();

private:
    static float angle(const RyLegacyBendParam &bend, int index)
    {
        const std::array<float, 4> angles{bend.getStaticA(), bend.getDynamicB(), bend.getDynamicC(), bend.getStaticD()};
        return angles[size_t(index)];
    }
    static float zone(const RyLegacyJointParam &param, int id)
    {
        if (const auto *twist = qobject_cast<const RyLegacyTwistParam *>(&param))
            return id == 33 ? twist->getStart() : twist->getEnd();
        const auto &smooth = static_cast<const RyLegacySmoothScale &>(param);
        const std::array<float, 4> values{smooth.getHiStart(), smooth.getHiEnd(), smooth.getLoEnd(),
                                          smooth.getLoStart()};
        return values[size_t(id - 35)];
    }
    /// Along the parameter's axis, 4 cm and more; gives the way in the world.
    static double dragAlongAxis(RyParamDragScene &scene, int id)
    {
        const RyLegacyJointParam &param = *scene.tool->currentParam();
        const Vec anchor = toVec(scene.driver().getWSPos());
        const Vec direction = unit(scene.direction(RyParamDragScene::axis(param.getAxis())));
        const Vec eye{40, 170, 290};
        const RyLine3 press = RyParamDragScene::ray(eye, anchor + direction * 3.0);
        const RyLine3 move = RyParamDragScene::ray(eye, anchor + direction * 7.5 + Vec{-1, 2, 1});
        const auto drag = scene.dragOf(id);
        drag->press(press);
        drag->move(move, {});
        drag->finish(QStringLiteral("drag"));
        return RyParamDragScene::along(anchor, direction, move) - RyParamDragScene::along(anchor, direction, press);
    }
};

void RyAngleAndZoneDragsTest::anglesAreThoseOfTheDrawnRays_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<int>("axis");
    for (int id = 29; id <= 32; ++id) {
        for (int axis = 0; axis < 3; ++axis)
            QTest::addRow("%d, axis %d", id, axis) << id << axis;
    }
}

void RyAngleAndZoneDragsTest::anglesAreThoseOfTheDrawnRays()
{
    QFETCH(int, id);
    QFETCH(int, axis);
    for (const bool isMirrored : {false, true}) {
        for (int degrees = -175; degrees < 180; degrees += 25) {
            RyParamDragScene scene(1.4f);
            if (isMirrored)
                scene.doll.figure->getYScaleControl()->setValue(-0.8f);
            auto *bend = static_cast<RyLegacyBendParam *>(scene.edit(RyParamDragScene::Type::Bend));
            auto *partner = static_cast<RyLegacyBendParam *>(scene.counterpart());
            bend->setAxis(axis);
            partner->setAxis(axis);
            scene.tool->setPushNeighborAngles(degrees % 2 == 0);
            const double t = degrees * M_PI / 180.0;
            const Vec rays[3] = {
                {0, std::sin(t), -std::cos(t)}, {std::cos(t), 0, std::sin(t)}, {std::cos(t), std::sin(t), 0}};
            const auto inWorld = [&](const Vec &v) {
                return RyParamDragScene::turned(scene.driver().getWSRot(),
                                                RyParamDragScene::turned(scene.driver().getOrientation(), v));
            };
            const Vec anchor = toVec(scene.driver().getWSPos());
            const Vec eye = anchor + inWorld(RyParamDragScene::axis(axis)) * 150.0 + Vec{12, 20, -9};
            const auto drag = scene.dragOf(id);
            drag->press(RyParamDragScene::ray(eye, anchor + inWorld({5, 4, 3})));
            drag->move(RyParamDragScene::ray(eye, anchor + inWorld(rays[axis]) * 13.0), {});
            const float now = angle(*bend, id - 29);
            QVERIFY2(std::abs(double(now) - t) < 1e-5, qPrintable(QString("%1 for %2").arg(double(now)).arg(t)));
            for (int i = 0; i < 4; ++i)
                QCOMPARE(angle(*partner, i), angle(*bend, i));
        }
    }
}

void RyAngleAndZoneDragsTest::neighboursComeBack()
{
    RyParamDragScene scene;
    auto *bend = static_cast<RyLegacyBendParam *>(scene.edit(RyParamDragScene::Type::Bend));
    bend->setAngles(1.5f, 0.8f, -0.8f, -1.5f);
    const RyBendAngles::Values before = bend->angleValues();
    const RyQuat rotation = scene.driver().getWSRot();
    const Vec anchor = toVec(scene.driver().getWSPos());
    const auto throughAngle = [&](double t) {
        const Vec rays[3] = {
            {0, std::sin(t), -std::cos(t)}, {std::cos(t), 0, std::sin(t)}, {std::cos(t), std::sin(t), 0}};
        const auto inWorld = [&](const Vec &v) {
            return RyParamDragScene::turned(rotation, RyParamDragScene::turned(scene.driver().getOrientation(), v));
        };
        const Vec eye = anchor + inWorld(RyParamDragScene::axis(bend->getAxis())) * 150.0;
        return RyParamDragScene::ray(eye, anchor + inWorld(rays[bend->getAxis()]) * 10.0);
    };
    const auto drag = scene.dragOf(30);
    drag->press(throughAngle(0.8));
    drag->move(throughAngle(1.9), {});
    QVERIFY(std::abs(bend->getStaticA() - 1.9f) < 1e-4f);
    drag->move(throughAngle(-1.7), {});
    QVERIFY(std::abs(bend->getStaticA() - 1.5f) < 1e-4f);
    QVERIFY(std::abs(bend->getDynamicC() + 1.7f) < 1e-4f);
    QVERIFY(std::abs(bend->getStaticD() + 1.7f) < 1e-4f);
    drag->move(throughAngle(1.1), {});
    QVERIFY(std::abs(bend->getDynamicB() - 1.1f) < 1e-4f);
    for (const size_t i : {size_t(0), size_t(2), size_t(3)})
        QVERIFY(std::abs(bend->angleValues()[i] - before[i]) < 1e-4f);
    drag->move(throughAngle(0.8), {});
    QCOMPARE(bend->angleValues(), before);
}

void RyAngleAndZoneDragsTest::neighboursStayWithoutPushing()
{
    RyParamDragScene scene;
    scene.tool->setPushNeighborAngles(false);
    auto *bend = static_cast<RyLegacyBendParam *>(scene.edit(RyParamDragScene::Type::Bend));
    bend->setAngles(1.5f, 0.8f, -0.8f, -1.5f);
    const RyBendAngles::Values before = bend->angleValues();
    const auto drag = scene.dragOf(31);
    const Vec anchor = toVec(scene.driver().getWSPos());
    drag->press(RyParamDragScene::ray({30, 150, 300}, anchor + Vec{5, 1, 0}));
    for (const Vec &way : {Vec{-5, 2, 0}, Vec{1, 6, 0}, Vec{1, -6, 0}}) {
        drag->move(RyParamDragScene::ray({30, 150, 300}, anchor + way), {});
        QVERIFY(std::abs(bend->angleValues()[2] - before[2]) > 0.5f);
        for (const size_t i : {size_t(0), size_t(1), size_t(3)})
            QCOMPARE(bend->angleValues()[i], before[i]);
    }
}

void RyAngleAndZoneDragsTest::angleWithoutDirection()
{
    RyParamDragScene scene;
    auto *bend = static_cast<RyLegacyBendParam *>(scene.edit(RyParamDragScene::Type::Bend));
    const RyBendAngles::Values before = bend->angleValues();
    const RyVec3 anchor = scene.driver().getWSPos();
    const auto drag = scene.dragOf(29);
    drag->press(RyLine3({30, 150, 300}, anchor + RyVec3(4, 3, 1)));
    drag->move(RyLine3(anchor, anchor + RyVec3(0.2f, 1, 3)), {});
    QCOMPARE(bend->angleValues(), before);
    // In the plane of the rays: finite.
    const Vec inPlane = scene.direction(RyParamDragScene::axis((bend->getAxis() + 1) % 3));
    drag->move(RyLine3(anchor + RyVec3(0, 0, 9), anchor + RyVec3(0, 0, 9) + RyParamDragScene::fromVec(inPlane)), {});
    for (const float value : bend->angleValues())
        QVERIFY(std::isfinite(value));
}

void RyAngleAndZoneDragsTest::crossedAnglesComeBack()
{
    // Rays that passed each other while pushing was off, and digits that no conversion keeps.
    RyParamDragScene scene;
    auto *bend = static_cast<RyLegacyBendParam *>(scene.edit(RyParamDragScene::Type::Bend));
    auto *partner = static_cast<RyLegacyBendParam *>(scene.counterpart());
    bend->setAngles(0.1f, 0.7000013f, -0.3f, -0.1f);
    partner->setAngles(1.2f, 0.7f, -0.9f, -1.1f);
    bend->getDynamicAngleBController()->setValue(40.123459f);
    const RyBendAngles::Values before = bend->angleValues();
    const RyBendAngles::Values beforePartner = partner->angleValues();
    for (int id = 29; id <= 32; ++id) {
        const auto drag = scene.dragOf(id);
        const RyLine3 press({30, 150, 300}, scene.driver().getWSPos() + RyVec3(4, 3, 1));
        drag->press(press);
        drag->move(RyLine3({30, 150, 300}, scene.driver().getWSPos() + RyVec3(-2, 5, 1)), {});
        QVERIFY(bend->angleValues() != before);
        drag->move(press, {});
        QCOMPARE(bend->angleValues(), before);
        QCOMPARE(partner->angleValues(), beforePartner);
    }
}

void RyAngleAndZoneDragsTest::twist_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<float>("figureScale");
    for (int id : {33, 34}) {
        for (const float scale : {1.0f, 2.0f})
            QTest::addRow("%d, scale %g", id, double(scale)) << id << scale;
    }
}

void RyAngleAndZoneDragsTest::twist()
{
    QFETCH(int, id);
    QFETCH(float, figureScale);
    RyParamDragScene scene(figureScale);
    const RyLegacyJointParam &param = *scene.edit(RyParamDragScene::Type::Twist);
    const float start = zone(param, id);
    const float other = zone(param, 67 - id);
    const double way = dragAlongAxis(scene, id);
    QVERIFY(way > 2.0);
    QVERIFY(std::abs(double(zone(param, id) - start) - way) < 1e-3);
    QCOMPARE(zone(param, 67 - id), other);
    QCOMPARE(zone(*scene.counterpart(), id), zone(param, id));
    QCOMPARE(zone(*scene.counterpart(), 67 - id), other);
}

void RyAngleAndZoneDragsTest::smoothZones_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<int>("across");
    QTest::addRow("high start") << 35 << 37;
    QTest::addRow("high end") << 36 << 38;
    QTest::addRow("low end") << 37 << 35;
    QTest::addRow("low start") << 38 << 36;
}

void RyAngleAndZoneDragsTest::smoothZones()
{
    QFETCH(int, id);
    QFETCH(int, across);
    RyParamDragScene scene;
    const RyLegacyJointParam &param = *scene.edit(RyParamDragScene::Type::SmoothScale);
    QVERIFY(scene.tool->bendPartnerParam());
    std::array<float, 4> before{};
    std::array<float, 4> beforePartner{};
    for (int i = 0; i < 4; ++i) {
        before[size_t(i)] = zone(param, 35 + i);
        beforePartner[size_t(i)] = zone(*scene.counterpart(), 35 + i);
    }
    const double way = dragAlongAxis(scene, id);
    QVERIFY(std::abs(way) > 2.0);
    QVERIFY(std::abs(double(zone(param, id) - before[size_t(id - 35)]) - way) < 1e-3);
    QCOMPARE(zone(*scene.counterpart(), across), zone(param, id));
    for (int other = 35; other <= 38; ++other) {
        if (other != id)
            QCOMPARE(zone(param, other), before[size_t(other - 35)]);
        if (other != across)
            QCOMPARE(zone(*scene.counterpart(), other), beforePartner[size_t(other - 35)]);
    }
}

RY_TEST(RyAngleAndZoneDragsTest)

#include "tst_angleAndZoneDrags.moc"
