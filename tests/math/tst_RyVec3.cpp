#include "PlainMath.h"

using namespace Plain;

class RyVec3Test : public QObject
{
    Q_OBJECT
private slots:
    void arithmeticMatchesDoubles();
    void angleIsBetweenZeroAndPi();
    void angleToAZeroVectorIsARightAngle();
    void rotationToCarriesTheOtherVectorOntoThisOne();
    void rotationToOfParallelOppositeAndZeroVectors();
    void divisionByZeroAndNormalOfZeroAreZero();
    void lengthKeepsTinyAndHugeVectors();
    void noNanFromFiniteInput();
};

void RyVec3Test::arithmeticMatchesDoubles()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyVec3 a = random.vector();
        const RyVec3 b = random.vector();
        const float s = float(random.number(0.5, 4));
        const Vec da = vec(a);
        const Vec db = vec(b);
        QVERIFY(distance(a + b, {da[0] + db[0], da[1] + db[1], da[2] + db[2]}) < 1e-5);
        QVERIFY(distance(a - b, {da[0] - db[0], da[1] - db[1], da[2] - db[2]}) < 1e-5);
        QVERIFY(distance(a * s, {da[0] * s, da[1] * s, da[2] * s}) < 1e-5);
        QVERIFY(distance(a / s, {da[0] / s, da[1] / s, da[2] / s}) < 1e-5);
        QVERIFY(std::fabs(a.dot(b) - dot(da, db)) < 2e-5);
        QVERIFY(distance(a.cross(b), cross(da, db)) < 5e-5);
        QVERIFY(std::fabs(a.length() - length(da)) < 2e-6);
        QVERIFY(distance(a.normalized(), unit(da)) < 2e-7);
        for (int i = 0; i < 3; ++i)
            QCOMPARE(a[i], i == 0 ? a.x : i == 1 ? a.y : a.z);
    }
    QCOMPARE(RyVec3::axis(0), RyVec3(1, 0, 0));
    QCOMPARE(RyVec3::axis(1), RyVec3(0, 1, 0));
    QCOMPARE(RyVec3::axis(2), RyVec3(0, 0, 1));
}

void RyVec3Test::angleIsBetweenZeroAndPi()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        // A vector turned by a known angle about an axis square to it.
        const RyVec3 a = random.direction();
        const Vec da = vec(a);
        const Vec axis = unit(cross(da, vec(random.direction())));
        const double angle = random.number(0, Pi);
        const double size = random.number(0.1, 50);
        const Vec turned = turn(da, axis, angle);
        const RyVec3 b(float(turned[0] * size), float(turned[1] * size), float(turned[2] * size));
        const double exact = std::atan2(length(cross(da, vec(b))), dot(da, vec(b)));
        QVERIFY(std::fabs(a.getAngleTo(b) - exact) < 1e-6);
        QVERIFY(std::fabs(a.getAngleTo(b) - angle) < 1e-5);
        QVERIFY(a.getAngleTo(b) >= 0.0f && a.getAngleTo(b) <= float(Pi));
        QCOMPARE(a.getAngleTo(a), 0.0f);
        QCOMPARE(a.getAngleTo(-a), float(Pi));
    }
}

void RyVec3Test::angleToAZeroVectorIsARightAngle()
{
    QCOMPARE(RyVec3().getAngleTo(RyVec3(1, 2, 3)), float(Pi / 2));
    QCOMPARE(RyVec3(1, 2, 3).getAngleTo(RyVec3()), float(Pi / 2));
    QCOMPARE(RyVec3().getAngleTo(RyVec3()), float(Pi / 2));
}

void RyVec3Test::rotationToCarriesTheOtherVectorOntoThisOne()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyVec3 a = random.direction() * float(std::pow(10.0, random.number(-4, 4)));
        const RyVec3 b = random.direction() * float(std::pow(10.0, random.number(-4, 4)));
        const Vec ua = unit(vec(a));
        const Vec ub = unit(vec(b));
        const RyQuat q = a.getRotationTo(b);
        // The axis is a x b, the angle that between them; applied it turns by minus the angle.
        const Vec axis = unit(cross(ua, ub));
        const double angle = std::acos(std::max(-1.0, std::min(1.0, dot(ua, ub))));
        QVERIFY(distance(turn(ub, axis, -angle), ua) < 1e-6);
        QVERIFY(std::fabs(q.x - axis[0] * std::sin(angle / 2)) < 1e-5);
        QVERIFY(std::fabs(q.y - axis[1] * std::sin(angle / 2)) < 1e-5);
        QVERIFY(std::fabs(q.z - axis[2] * std::sin(angle / 2)) < 1e-5);
        QVERIFY(std::fabs(q.w - std::cos(angle / 2)) < 1e-5);
        QVERIFY(distance(q.multVec(b.normalized()), ua) < 1e-6);
    }
    // The other way round it does not hold.
    const RyQuat q = RyVec3(1, 0, 0).getRotationTo(RyVec3(0, 1, 0));
    QVERIFY(distance(q.multVec(RyVec3(1, 0, 0)), {0, -1, 0}) < 1e-6);
}

void RyVec3Test::rotationToOfParallelOppositeAndZeroVectors()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyVec3 a = random.direction();
        const float factor = float(std::ldexp(1.0, random.integer(-20, 20)));
        QCOMPARE(a.getRotationTo(a * factor), RyQuat());
        const RyQuat half = a.getRotationTo(a * -factor);
        QVERIFY(std::fabs(half.w) < 1e-6);
        QVERIFY(std::fabs(length({half.x, half.y, half.z}) - 1.0) < 1e-6);
        QVERIFY(std::fabs(dot({half.x, half.y, half.z}, unit(vec(a)))) < 1e-6);
        QVERIFY(distance(half.multVec(-a), vec(a)) < 1e-5);
        // Nearly opposite, where the cross product is small but known.
        const RyVec3 near = -a + random.vector(1e-4);
        QVERIFY(distance(a.getRotationTo(near).multVec(near.normalized()), unit(vec(a))) < 1e-6);
        QCOMPARE(a.getRotationTo(RyVec3()), RyQuat());
        QCOMPARE(RyVec3().getRotationTo(a), RyQuat());
    }
    for (int axis = 0; axis < 3; ++axis) {
        const RyVec3 e = RyVec3::axis(axis);
        QVERIFY(distance(e.getRotationTo(-e).multVec(-e), vec(e)) < 1e-6);
    }
}

void RyVec3Test::divisionByZeroAndNormalOfZeroAreZero()
{
    QCOMPARE(RyVec3(1, -2, 3) / 0.0f, RyVec3());
    QCOMPARE(RyVec3(1, -2, 3) / -0.0f, RyVec3());
    QCOMPARE(RyVec3() / 0.0f, RyVec3());
    QCOMPARE(RyVec3().normalized(), RyVec3());
    RyVec3 v(5, 6, 7);
    v /= 0.0f;
    QCOMPARE(v, RyVec3());
    v.normalize();
    QCOMPARE(v, RyVec3());
    QCOMPARE(RyVec3().length(), 0.0f);
}

void RyVec3Test::lengthKeepsTinyAndHugeVectors()
{
    QVERIFY(std::fabs(RyVec3(3e-30f, 4e-30f, 0).length() / 5e-30f - 1.0f) < 1e-6f);
    QVERIFY(std::fabs(RyVec3(3e30f, 0, 4e30f).length() / 5e30f - 1.0f) < 1e-6f);
    QVERIFY(distance(RyVec3(3e-40f, 4e-40f, 0).normalized(), {0.6, 0.8, 0.0}) < 1e-4);
    QVERIFY(distance(RyVec3(3e38f, 0, -3e38f).normalized(), {std::sqrt(0.5), 0.0, -std::sqrt(0.5)}) < 1e-6);
    QVERIFY(std::fabs(RyVec3(1e-30f, 0, 0).getAngleTo(RyVec3(0, 1e30f, 1e30f)) - Pi / 2) < 1e-6);
}

void RyVec3Test::noNanFromFiniteInput()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyVec3 a = random.anyVector();
        const RyVec3 b = random.anyVector();
        const float s = random.anyFinite();
        QVERIFY(!hasNan(a + b) && !hasNan(a - b) && !hasNan(a * s) && !hasNan(a / s) && !hasNan(a.cross(b)));
        QVERIFY(!std::isnan(a.dot(b)) && std::isfinite(a.length()) && std::isfinite(a.getAngleTo(b)));
        QVERIFY(finite(a.normalized()) && finite(a.getRotationTo(b)));
        QVERIFY(finite((a / s).normalized()) && finite(a.cross(b).normalized()));
        const double size = length(vec(a.normalized()));
        QVERIFY(size == 0.0 ? a == RyVec3() : std::fabs(size - 1.0) < 1e-5);
    }
}

RY_TEST(RyVec3Test)
#include "tst_RyVec3.moc"
