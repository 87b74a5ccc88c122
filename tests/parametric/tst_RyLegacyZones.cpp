#include "rycore/math/RyAffine.h"
#include "rycore/math/RyFastMath.h"
#include "rycore/parametric/RyLegacyJointParam.h"
#include "rycore/parametric/RyLegacyParamZones.h"
#include "rycore/parametric/RyLegacyRamps.h"
#include "support/RyRandom.h"
#include "support/RyTest.h"

#include <QObject>

#include <cmath>
#include <limits>

namespace {

using Param = RyLegacyJointParam;
constexpr double Degree = RyFastMath::RadiansPerDegree;

/// One bone, turned and away from zero, that drives one parameter.
struct OneParam
{
    OneParam(int type, int axis, unsigned flags, std::vector<float> values)
    {
        RyLegacyRig::Bone bone;
        bone.origin = {3, -4, 7};
        bone.end = {13, -4, 7};
        bone.orientation = RyQuat(RyVec3(1, 2, -1), 1.1f);
        rig.bones.push_back(bone);
        param.type = type;
        param.axis = axis;
        param.flags = flags;
        param.bone = param.driver = 0;
        param.values = std::move(values);
    }
    /// Of a point in bone axes about the origin.
    double weight(double x, double y, double z) const { return at(&RyLegacyParamZones::weight, x, y, z); }
    double bulge(double x, double y, double z) const { return at(&RyLegacyParamZones::bulge, x, y, z); }
    double at(double (RyLegacyParamZones::*what)(const double[3]) const, double x, double y, double z) const
    {
        const double axes[3] = {x, y, z};
        double p[3];
        RyAffine::fromRotation(rig.bones[0].orientation).mapPoint(axes, p);
        for (int k = 0; k < 3; ++k)
            p[k] += rig.bones[0].origin[k];
        return (RyLegacyParamZones(rig, param).*what)(p);
    }

    RyLegacyRig rig;
    RyLegacyRig::Param param;
};

bool near(double a, double b, double tolerance = 1e-6)
{
    return std::fabs(a - b) <= tolerance;
}

double bendWeight(std::vector<float> angles, double degrees)
{
    angles.resize(8);
    const OneParam bend(Param::Bend, 2, Param::ApplyAngles, angles);
    return bend.weight(5 * std::cos(degrees * Degree), 5 * std::sin(degrees * Degree), 2);
}

} // namespace

class LegacyZonesTest : public QObject
{
    Q_OBJECT

private slots:
    void ramps();
    void creationAngles_data();
    void creationAngles();
    void raysMayPassTheCut();
    void crossedRaysAreOne();
    void staticRaysReachAtMostRound();
    void oneHalfOnTheAxisLine();
    void boneWithoutLength();
    void bulgesSwellTheRamp();
    void spheres();
    void flatSpheres();
    void spheresStandInParameterSpace();
    void equalSpheresSayNothing();
    void zonesMultiply();
    void twist();
    void zonesFarAwaySayNothing();
    void smoothScale();
};

void LegacyZonesTest::ramps()
{
    using namespace RyLegacyRamps;
    QCOMPARE(smooth(-1), 0.0);
    QCOMPARE(smooth(0.25), 0.15625);
    QCOMPARE(smooth(2), 1.0);
    QCOMPARE(wrap(RyFastMath::Pi), RyFastMath::Pi);
    QVERIFY(near(wrap(-RyFastMath::Pi), RyFastMath::Pi));
    QVERIFY(near(wrap(7), 7 - 2 * RyFastMath::Pi));
    QVERIFY(near(wrapUp(-1), 2 * RyFastMath::Pi - 1));
    QVERIFY(wrapUp(-1e-30) < 2 * RyFastMath::Pi);
    QCOMPARE(between(1, 2, 2), 0.0);
    QCOMPARE(between(2, 2, 2), 1.0);
    QCOMPARE(between(3, 4, 2), 0.5);
}

void LegacyZonesTest::creationAngles_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("about");
    QTest::addColumn<int>("sign");
    QTest::addColumn<QVector<int>>("eighths");
    const QVector<int> up{2, 1, -1, -2};
    const QVector<int> down{-2, -3, 3, 2};
    const QVector<int> left{4, 3, 1, 0};
    const QVector<int> right{0, -1, -3, 4};
    for (const int about : {1, 2}) {
        QTest::addRow("+X about %d", about) << 0 << about << 1 << up;
        QTest::addRow("-X about %d", about) << 0 << about << -1 << down;
    }
    for (const int about : {0, 2}) {
        QTest::addRow("+Y about %d", about) << 1 << about << 1 << left;
        QTest::addRow("-Y about %d", about) << 1 << about << -1 << right;
    }
    QTest::newRow("+Z about X") << 2 << 0 << 1 << down;
    QTest::newRow("-Z about X") << 2 << 0 << -1 << up;
    QTest::newRow("+Z about Y") << 2 << 1 << 1 << left;
    QTest::newRow("-Z about Y") << 2 << 1 << -1 << right;
}

void LegacyZonesTest::creationAngles()
{
    QFETCH(int, first);
    QFETCH(int, about);
    QFETCH(int, sign);
    QFETCH(QVector<int>, eighths);
    std::vector<float> values;
    for (const int eighth : eighths)
        values.push_back(45.0f * eighth);
    values.resize(8);
    const OneParam bend(Param::Bend, about, Param::ApplyAngles, values);
    const int side = 3 - first - about;
    const auto weightAt = [&](double degrees) {
        double y[3] = {};
        y[first] = 5 * sign * std::cos(degrees * Degree);
        y[side] = 5 * std::sin(degrees * Degree);
        y[about] = 1.5;
        return bend.weight(y[0], y[1], y[2]);
    };
    for (const double way : {1.0, -1.0}) {
        QVERIFY(near(weightAt(0), 1));
        QVERIFY(near(weightAt(way * 44.9), 1));
        QVERIFY(near(weightAt(way * 45), 1));
        QVERIFY(near(weightAt(way * 67.5), 0.5));
        QVERIFY(near(weightAt(way * 90), 0));
        QVERIFY(near(weightAt(way * 135), 0));
        QVERIFY(near(weightAt(way * 180), 0));
    }
}

void LegacyZonesTest::raysMayPassTheCut()
{
    RyRandom random;
    for (int i = 0; i < 200; ++i) {
        const float turn = float(random.number(-180, 180));
        const auto wrapped = [turn](float angle) {
            return float(RyLegacyRamps::wrap(double(angle + turn) * Degree) / Degree);
        };
        const std::vector<float> angles{wrapped(110), wrapped(30), wrapped(-50), wrapped(-90)};
        const double at = random.number(-180, 180);
        const double plain = bendWeight({110, 30, -50, -90}, at);
        QVERIFY(near(bendWeight(angles, at + turn), plain, 1e-4));
        QVERIFY(near(plain, at >= -50 && at <= 30 ? 1 : at > 110 || at < -90 ? 0 : plain, 1e-6));
    }
}

void LegacyZonesTest::crossedRaysAreOne()
{
    // B lies 20 degrees below C: one ray at 0, ramps from there to A and D.
    const std::vector<float> angles{40, -10, 10, -60};
    QVERIFY(near(bendWeight(angles, 0), 1));
    QVERIFY(near(bendWeight(angles, 25), 0.5));
    QVERIFY(near(bendWeight(angles, -35), 0.5));
    QVERIFY(near(bendWeight(angles, 170), 0));
    // As far apart as counts as width.
    QVERIFY(near(bendWeight({150, 130, -130, -150}, 125), 1));
}

void LegacyZonesTest::staticRaysReachAtMostRound()
{
    // A lies 170 degrees beyond B, which lies 60 from the middle: the ramp still ends opposite the middle.
    const std::vector<float> angles{-130, 60, -60, -90};
    QVERIFY(near(bendWeight(angles, 120), 0.5));
    QVERIFY(near(bendWeight(angles, 180), 0));
    // A below B: no ramp.
    QVERIFY(near(bendWeight({40, 60, -60, -90}, 59.9), 1));
    QVERIFY(near(bendWeight({40, 60, -60, -90}, 60.1), 0));
}

void LegacyZonesTest::oneHalfOnTheAxisLine()
{
    const OneParam bend(Param::Bend, 2, Param::ApplyAngles, {90, 45, -45, -90, 0, 0, 0, 0});
    QCOMPARE(bend.weight(0, 0, 3), 0.5);
    // The bone is 10 long: half way to a twentieth of it.
    QVERIFY(near(bend.weight(0.25, 0, 3), 0.75));
    QVERIFY(near(bend.weight(-0.25, 0, 3), 0.25));
    QVERIFY(near(bend.weight(0.501, 0, 3), 1));
}

void LegacyZonesTest::boneWithoutLength()
{
    OneParam bend(Param::Bend, 2, Param::ApplyAngles | Param::ApplyBulges, {90, 45, -45, -90, 1, 1, 1, 1});
    bend.rig.bones[0].end = bend.rig.bones[0].origin;
    QVERIFY(near(bend.weight(1e-4, 0, 3), 1));
    QVERIFY(near(bend.weight(-1e-4, 0, 3), 0));
    QVERIFY(!RyLegacyParamZones(bend.rig, bend.param).bulges());
}

void LegacyZonesTest::bulgesSwellTheRamp()
{
    const OneParam bend(Param::Bend, 2, Param::ApplyBulges, {90, 45, -45, -90, 1, 1, 1, 1});
    const auto bulgeAt = [&](double degrees, double r = 5) {
        return bend.bulge(r * std::cos(degrees * Degree), r * std::sin(degrees * Degree), 2);
    };
    QVERIFY(near(bulgeAt(67.5), 1));
    QVERIFY(near(bulgeAt(-67.5), -1));
    QVERIFY(near(bulgeAt(67.5, 0.25), 0.5));
    for (const double at : {0.0, 45.0, -45.0, 90.0, -90.0, 180.0})
        QVERIFY(near(bulgeAt(at), 0));
    // Weights are made by what is applied: here nothing is.
    QVERIFY(!RyLegacyParamZones(bend.rig, bend.param).decides());
    QCOMPARE(bend.weight(-5, 0, 0), 1.0);
}

void LegacyZonesTest::spheres()
{
    const auto weight = [](double d, double s) { return RyLegacySphereZone::weight(d, s); };
    QCOMPARE(weight(1.0, 3.0), 1.0);
    QCOMPARE(weight(2.0, 1.0), 0.0);
    QVERIFY(near(weight(1.3, 0.7), 0.5));
    QVERIFY(near(weight(1.2, 0.4), 1 - RyLegacyRamps::smooth(0.25)));
    // Equal spheres: the static one counts as 5 % larger.
    QVERIFY(near(weight(1.025, 1.025), 1 - RyLegacyRamps::smooth(0.025 / (0.025 + 1 - 1.025 / 1.05))));
    QCOMPARE(weight(1.05, 1.05), 0.0);
}

void LegacyZonesTest::flatSpheres()
{
    const double infinite = std::numeric_limits<double>::infinity();
    QCOMPARE(RyLegacySphereZone::weight(infinite, 0.5), 0.0);
    QCOMPARE(RyLegacySphereZone::weight(1.5, infinite), 0.0);
    QCOMPARE(RyLegacySphereZone::weight(0.5, infinite), 1.0);
    RyMatrix4 flat;
    flat.scale(RyVec3(2, 0, 2));
    const double centre[3] = {0, 0, 0};
    QCOMPARE(RyLegacySphereZone(flat, RyMatrix4()).weight(centre), 0.0);
    QCOMPARE(RyLegacySphereZone(RyMatrix4(), flat).weight(centre), 1.0);
}

void LegacyZonesTest::spheresStandInParameterSpace()
{
    OneParam twist(Param::Twist, 0, Param::ApplyMatrices, {-24384, 24384});
    twist.param.dynamicMatrix.scale(2);
    twist.param.dynamicMatrix.translate(twist.rig.bones[0].origin + RyVec3(5, 0, 0));
    twist.param.staticMatrix.scale(RyVec3(4, 3, 4));
    twist.param.staticMatrix.translate(twist.rig.bones[0].origin + RyVec3(5, 0, 0));
    QVERIFY(near(twist.weight(5, 0, 0), 1));
    QVERIFY(near(twist.weight(6.9, 0, 0), 1));
    QVERIFY(near(twist.weight(9.1, 0, 0), 0));
    QVERIFY(near(twist.weight(5, 3.1, 0), 0));
    // d = 1.5 and s = 0.75
    QVERIFY(near(twist.weight(8, 0, 0), 1 - RyLegacyRamps::smooth(0.5 / 0.75)));
}

void LegacyZonesTest::equalSpheresSayNothing()
{
    OneParam bend(Param::Bend, 2, Param::ApplyMatrices, {90, 45, -45, -90, 0, 0, 0, 0});
    QVERIFY(!RyLegacyParamZones(bend.rig, bend.param).decides());
    bend.param.staticMatrix.scale(1.001f);
    QVERIFY(RyLegacyParamZones(bend.rig, bend.param).decides());
    bend.param.flags = 0;
    QVERIFY(!RyLegacyParamZones(bend.rig, bend.param).decides());
}

void LegacyZonesTest::zonesMultiply()
{
    OneParam bend(Param::Bend, 2, Param::ApplyAngles | Param::ApplyMatrices, {90, 45, -45, -90, 0, 0, 0, 0});
    for (RyMatrix4 *matrix : {&bend.param.dynamicMatrix, &bend.param.staticMatrix}) {
        matrix->scale(matrix == &bend.param.dynamicMatrix ? 4.0f : 12.0f);
        matrix->translate(bend.rig.bones[0].origin);
    }
    // 67.5 degrees and d = 2, s = 2/3
    const double along[2] = {8 * std::cos(67.5 * Degree), 8 * std::sin(67.5 * Degree)};
    QVERIFY(near(bend.weight(along[0], along[1], 0), 0.5 * (1 - RyLegacyRamps::smooth(1.0 / (1.0 + 1.0 / 3)))));
}

void LegacyZonesTest::twist()
{
    // In parameter space the origin stands where it stands in the figure: x from 2 to 10 is -1 to 7 from there.
    const OneParam up(Param::Twist, 0, Param::ApplyBlend, {2, 10});
    QVERIFY(near(up.weight(-1, 3, 3), 0));
    QVERIFY(near(up.weight(3, 3, 3), 0.5));
    QVERIFY(near(up.weight(7, 3, 3), 1));
    const OneParam down(Param::Twist, 1, Param::ApplyBlend, {-3, -5});
    QVERIFY(near(down.weight(2, 1, 3), 0));
    QVERIFY(near(down.weight(2, 0, 3), 0.5));
    QVERIFY(near(down.weight(2, -0.5, 3), RyLegacyRamps::smooth(0.75)));
}

void LegacyZonesTest::zonesFarAwaySayNothing()
{
    const auto decides = [](std::vector<float> values, unsigned flags) {
        const OneParam param(values.size() == 2 ? Param::Twist : Param::SmoothScale, 0, flags, values);
        return RyLegacyParamZones(param.rig, param.param).decides();
    };
    QVERIFY(!decides({-24384, 24384}, Param::ApplyBlend));
    QVERIFY(!decides({0, 24141}, Param::ApplyBlend));
    QVERIFY(!decides({-24140.16f, 0}, Param::ApplyBlend));
    QVERIFY(decides({-24140, 24140}, Param::ApplyBlend));
    QVERIFY(!decides({-1, 1}, 0));
    const unsigned both = Param::ApplyZones | Param::HighSide | Param::LowSide;
    QVERIFY(!decides({24140.16f, 24384, -24140.16f, -24384}, both));
    QVERIFY(decides({1, 2, -24140.16f, -24384}, both));
    QVERIFY(decides({24140.16f, 24384, -1, -2}, both));
    QVERIFY(!decides({1, 2, -24140.16f, -24384}, Param::ApplyZones | Param::LowSide));
    QVERIFY(!decides({1, 2, 3, 4}, Param::HighSide | Param::LowSide));
}

void LegacyZonesTest::smoothScale()
{
    // High zone from 1 at 5 to 0 at 7, low zone from 1 at 1 to 0 at -1; the origin is 3.
    const std::vector<float> values{5, 7, 1, -1};
    const unsigned both = Param::ApplyZones | Param::HighSide | Param::LowSide;
    const OneParam param(Param::SmoothScale, 0, both, values);
    QVERIFY(near(param.weight(0, 2, 2), 1));
    QVERIFY(near(param.weight(3, 2, 2), 0.5));
    QVERIFY(near(param.weight(4, 2, 2), 0));
    QVERIFY(near(param.weight(-3, 2, 2), 0.5));
    QVERIFY(near(param.weight(-4, 2, 2), 0));
    const OneParam high(Param::SmoothScale, 0, Param::ApplyZones | Param::HighSide, values);
    QVERIFY(near(high.weight(-4, 2, 2), 1));
    QVERIFY(near(high.weight(3.5, 2, 2), 1 - RyLegacyRamps::smooth(0.75)));
    OneParam partly(Param::SmoothScale, 0, both, {5, 7, -24140.16f, -24384});
    QVERIFY(near(partly.weight(-4, 2, 2), 1));
    partly.param.flags |= Param::ApplyMatrices;
    partly.param.dynamicMatrix.translate({100, 0, 0});
    QVERIFY(near(partly.weight(0, 2, 2), 0));
}

RY_TEST(LegacyZonesTest)
#include "tst_RyLegacyZones.moc"
