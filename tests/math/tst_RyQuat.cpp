#include "PlainMath.h"
#include "rycore/math/RyRotationOrder.h"

using namespace Plain;

class RyQuatTest : public QObject
{
    Q_OBJECT
private slots:
    void axisAndAngleGoInAndComeOut();
    void productIsHamiltons();
    void multVecTurnsByMinusTheAngle();
    void leftFactorActsFirst();
    void glRotateByMinusTheAngleDrawsTheSame();
    void inverseUndoes();
    void makeClosestOnlyFlipsTheSign();
    void eulerControlsAreRightHandedTurnsInOrder();
    void eulerRoundTripInAllOrders();
    void eulerRoundTripAtThePoles();
    void noNanFromFiniteInput();
};

void RyQuatTest::axisAndAngleGoInAndComeOut()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyVec3 axis = random.direction() * float(std::pow(10.0, random.number(-6, 6)));
        const double t = float(random.number(0.001, 2 * Pi - 0.001));
        const Vec u = unit(vec(axis));
        const RyQuat q(axis, float(t));
        QVERIFY(std::fabs(q.x - u[0] * std::sin(t / 2)) < 1e-6 && std::fabs(q.y - u[1] * std::sin(t / 2)) < 1e-6);
        QVERIFY(std::fabs(q.z - u[2] * std::sin(t / 2)) < 1e-6 && std::fabs(q.w - std::cos(t / 2)) < 1e-6);
        RyVec3 gotAxis;
        float gotAngle = 0.0f;
        q.getValue(gotAxis, gotAngle);
        QVERIFY(std::fabs(gotAngle - t) < 1e-6);
        QVERIFY(distance(gotAxis, u) < 1e-3);
        QVERIFY(std::fabs(length(vec(gotAxis)) - 1.0) < 1e-6);
    }
    QCOMPARE(RyQuat(RyVec3(), 2.0f), RyQuat());
    RyVec3 axis;
    float angle = 1.0f;
    RyQuat().getValue(axis, angle);
    QCOMPARE(angle, 0.0f);
    QCOMPARE(axis.length(), 1.0f);
}

void RyQuatTest::productIsHamiltons()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyQuat a = random.rotation();
        const RyQuat b = random.rotation();
        const Vec va{a.x, a.y, a.z};
        const Vec vb{b.x, b.y, b.z};
        const Vec c = cross(va, vb);
        const RyQuat p = a * b;
        QVERIFY(std::fabs(p.w - (double(a.w) * b.w - dot(va, vb))) < 1e-6);
        QVERIFY(std::fabs(p.x - (double(a.w) * b.x + double(b.w) * a.x + c[0])) < 1e-6);
        QVERIFY(std::fabs(p.y - (double(a.w) * b.y + double(b.w) * a.y + c[1])) < 1e-6);
        QVERIFY(std::fabs(p.z - (double(a.w) * b.z + double(b.w) * a.z + c[2])) < 1e-6);
    }
    const RyQuat i(1, 0, 0, 0);
    const RyQuat j(0, 1, 0, 0);
    QCOMPARE(i * j, RyQuat(0, 0, 1, 0));
    QCOMPARE(j * i, RyQuat(0, 0, -1, 0));
    QCOMPARE(i * i, RyQuat(0, 0, 0, -1));
}

void RyQuatTest::multVecTurnsByMinusTheAngle()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyVec3 axis = random.direction();
        const float t = random.angle();
        const RyVec3 v = random.vector();
        QVERIFY(distance(RyQuat(axis, t).multVec(v), turn(vec(v), unit(vec(axis)), -double(t))) < 2e-5);
        // The length of the four numbers does not matter.
        const RyQuat q(axis, t);
        const float s = float(random.number(0.1, 9));
        QVERIFY(distance(RyQuat(q.x * s, q.y * s, q.z * s, q.w * s).multVec(v), vec(q.multVec(v))) < 2e-5);
    }
    QVERIFY(distance(RyQuat(RyVec3(0, 0, 1), float(Pi / 2)).multVec(RyVec3(1, 0, 0)), {0, -1, 0}) < 1e-6);
}

void RyQuatTest::leftFactorActsFirst()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyVec3 axisP = random.direction();
        const RyVec3 axisQ = random.direction();
        const float tp = random.angle();
        const float tq = random.angle();
        const RyVec3 v = random.vector();
        const Vec first = turn(vec(v), unit(vec(axisP)), -double(tp));
        const Vec second = turn(first, unit(vec(axisQ)), -double(tq));
        QVERIFY(distance((RyQuat(axisP, tp) * RyQuat(axisQ, tq)).multVec(v), second) < 2e-5);
    }
}

void RyQuatTest::glRotateByMinusTheAngleDrawsTheSame()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyVec3 v = random.vector();
        RyVec3 axis;
        float t = 0.0f;
        const RyQuat q = random.rotation();
        q.getValue(axis, t);
        // The column-vector matrix that glRotatef is documented to multiply by.
        const double degrees = -double(t) * 57.29578;
        const double c = std::cos(degrees * Pi / 180.0);
        const double s = std::sin(degrees * Pi / 180.0);
        const Vec a = unit(vec(axis));
        const double x = a[0];
        const double y = a[1];
        const double z = a[2];
        const double gl[3][3] = {{x * x * (1 - c) + c, x * y * (1 - c) - z * s, x * z * (1 - c) + y * s},
                                 {y * x * (1 - c) + z * s, y * y * (1 - c) + c, y * z * (1 - c) - x * s},
                                 {x * z * (1 - c) - y * s, y * z * (1 - c) + x * s, z * z * (1 - c) + c}};
        Vec drawn;
        for (size_t i = 0; i < 3; ++i)
            drawn[i] = gl[i][0] * v.x + gl[i][1] * v.y + gl[i][2] * v.z;
        QVERIFY(distance(q.multVec(v), drawn) < 2e-5);
    }
}

void RyQuatTest::inverseUndoes()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyVec3 axis = random.direction();
        const float t = random.angle();
        const RyVec3 v = random.vector();
        const RyQuat back = RyQuat(axis, t).inverse();
        QVERIFY(distance(back.multVec(v), turn(vec(v), unit(vec(axis)), t)) < 2e-5);
        const RyQuat q = RyQuat(axis, t) * back;
        QVERIFY(std::fabs(q.w - 1.0f) < 1e-6f && std::fabs(q.x) + std::fabs(q.y) + std::fabs(q.z) < 1e-6f);
    }
    QCOMPARE(RyQuat(0, 0, 0, 0).inverse(), RyQuat());
    QCOMPARE(RyQuat(0, 0, 0, 0).normalized(), RyQuat());
    QCOMPARE(RyQuat(0, 0, 0, 4).normalized(), RyQuat());
    QCOMPARE(RyQuat(0, 0, 0, 0).multVec(RyVec3(1, 2, 3)), RyVec3(1, 2, 3));
}

void RyQuatTest::makeClosestOnlyFlipsTheSign()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyQuat r = random.rotation();
        const RyQuat q = random.rotation();
        RyQuat c = q;
        c.makeClosest(r);
        const double d = double(q.x) * r.x + double(q.y) * r.y + double(q.z) * r.z + double(q.w) * r.w;
        QCOMPARE(c, d < 0 ? RyQuat(-q.x, -q.y, -q.z, -q.w) : q);
        QVERIFY(distance(c.multVec(RyVec3(1, 2, 3)), vec(q.multVec(RyVec3(1, 2, 3)))) < 1e-6);
    }
}

void RyQuatTest::eulerControlsAreRightHandedTurnsInOrder()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyRotationOrder order(n % 6);
        int axes[3];
        order.getAxisOrder(axes[0], axes[1], axes[2]);
        const RyVec3 degrees = random.vector(400);
        const RyVec3 v = random.vector();
        Vec expected = vec(v);
        for (int i = 0; i < 3; ++i)
            expected = turn(expected, vec(RyVec3::axis(axes[i])), degrees[axes[i]] * Pi / 180);
        QVERIFY(distance(RyQuat::fromEuler(degrees, axes).multVec(v), expected) < 3e-5);
        if (order.order() == RyRotationOrder::XYZ)
            QCOMPARE(RyQuat::fromEulerXYZ(degrees), RyQuat::fromEuler(degrees, axes));
    }
}

namespace {

/// Largest difference of the four numbers, the sign left free.
double apart(const RyQuat &a, const RyQuat &b)
{
    const auto most = [&](double s) {
        return std::max(std::max(std::fabs(a.x - s * b.x), std::fabs(a.y - s * b.y)),
                        std::max(std::fabs(a.z - s * b.z), std::fabs(a.w - s * b.w)));
    };
    return std::min(most(1), most(-1));
}

} // namespace

void RyQuatTest::eulerRoundTripInAllOrders()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        int axes[3];
        RyRotationOrder(n % 6).getAxisOrder(axes[0], axes[1], axes[2]);
        const RyQuat q = random.rotation();
        QVERIFY(apart(RyQuat::fromEuler(q.toEuler(axes), axes), q) < 1e-6);
        QVERIFY(apart(RyQuat::fromEulerXYZ(q.toEulerXYZ()), q) < 1e-6);
        // Values within the principal range come back as they were typed.
        RyVec3 typed;
        typed[axes[0]] = float(random.number(-179, 179));
        typed[axes[1]] = float(random.number(-89, 89));
        typed[axes[2]] = float(random.number(-179, 179));
        QVERIFY(distance(RyQuat::fromEuler(typed, axes).toEuler(axes), vec(typed)) < 2e-2);
    }
}

void RyQuatTest::eulerRoundTripAtThePoles()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        int axes[3];
        RyRotationOrder(n % 6).getAxisOrder(axes[0], axes[1], axes[2]);
        RyVec3 degrees = random.vector(180);
        const double off = n % 3 == 0 ? 0.0 : random.number(-1, 1) * std::pow(10.0, random.number(-7, -1));
        degrees[axes[1]] = float((n % 2 ? 90.0 : -90.0) + off);
        const RyQuat q = RyQuat::fromEuler(degrees, axes);
        const RyVec3 read = q.toEuler(axes);
        QVERIFY(finite(read));
        QVERIFY(apart(RyQuat::fromEuler(read, axes), q) < 1e-5);
    }
}

void RyQuatTest::noNanFromFiniteInput()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        int axes[3];
        RyRotationOrder(n % 6).getAxisOrder(axes[0], axes[1], axes[2]);
        const RyQuat a = random.anyQuat();
        const RyQuat b = random.anyQuat();
        QVERIFY(finite(a * b) && finite(a.inverse()) && finite(a.normalized()) &&
                finite(a.multVec(random.anyVector())));
        QVERIFY(finite(RyQuat(random.anyVector(), random.anyFinite())));
        QVERIFY(finite(a.toEuler(axes)) && finite(RyQuat::fromEuler(random.anyVector(), axes)));
        RyVec3 axis;
        float angle = 0.0f;
        a.getValue(axis, angle);
        QVERIFY(finite(axis) && std::isfinite(angle) && std::fabs(axis.length() - 1.0f) < 1e-5f);
        RyQuat c = a;
        c.makeClosest(b);
        QVERIFY(finite(c) && !std::isnan(a.dot(b)));
    }
}

RY_TEST(RyQuatTest)
#include "tst_RyQuat.moc"
