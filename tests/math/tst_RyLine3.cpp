#include "PlainMath.h"
#include "rycore/math/RyLine3.h"

#include <Eigen/Dense>

using namespace Plain;

class RyLine3Test : public QObject
{
    Q_OBJECT
private slots:
    void endsGiveOriginAndUnitDirection();
    void planeIntersectLiesOnBoth();
    void planeIntersectOfAParallelLineIsItsOrigin();
    void closestPointsMatchLeastSquares();
    void closestPointsOfParallelLines();
    void nearlyParallelLinesAreParallel();
    void noNanFromFiniteInput();
};

void RyLine3Test::endsGiveOriginAndUnitDirection()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyVec3 a = random.vector();
        const RyVec3 b = random.vector();
        RyLine3 line;
        line.setEnds(a, b);
        QCOMPARE(line.getOrigin(), a);
        const Vec d = unit({double(b.x) - a.x, double(b.y) - a.y, double(b.z) - a.z});
        QVERIFY(distance(line.getDirection(), d) < 1e-6);
    }
    QCOMPARE(RyLine3(RyVec3(1, 2, 3), RyVec3(1, 2, 3)).getDirection(), RyVec3());
    QCOMPARE(RyLine3().getDirection(), RyVec3());
}

void RyLine3Test::planeIntersectLiesOnBoth()
{
    Random random;
    int tried = 0;
    for (int n = 0; n < Cases; ++n) {
        const RyLine3 line(random.vector(), random.vector());
        const RyVec3 point = random.vector();
        const RyVec3 normal = random.direction() * float(random.number(0.1, 30));
        const Vec d = vec(line.getDirection());
        const Vec o = vec(line.getOrigin());
        const Vec u = unit(vec(normal));
        if (std::fabs(dot(d, u)) < 0.05)
            continue;
        ++tried;
        RyVec3 hit;
        QVERIFY(line.planeIntersect(point, normal, hit));
        QVERIFY(std::fabs(dot(u, vec(hit - point))) < 1e-4);
        const double t = (dot(u, vec(point)) - dot(u, o)) / dot(u, d);
        QVERIFY(distance(hit, {o[0] + t * d[0], o[1] + t * d[1], o[2] + t * d[2]}) < 1e-4);
    }
    QVERIFY(tried > Cases / 2);
}

void RyLine3Test::planeIntersectOfAParallelLineIsItsOrigin()
{
    const RyLine3 line(RyVec3(1, 2, 3), RyVec3(5, 2, 3));
    RyVec3 hit(9, 9, 9);
    QVERIFY(!line.planeIntersect(RyVec3(0, 0, 0), RyVec3(0, 1, 0), hit));
    QCOMPARE(hit, RyVec3(1, 2, 3));
    hit = RyVec3(9, 9, 9);
    QVERIFY(!line.planeIntersect(RyVec3(0, 0, 0), RyVec3(), hit));
    QCOMPARE(hit, RyVec3(1, 2, 3));
    hit = RyVec3(9, 9, 9);
    QVERIFY(!RyLine3(RyVec3(1, 2, 3), RyVec3(1, 2, 3)).planeIntersect(RyVec3(0, 0, 0), RyVec3(0, 1, 0), hit));
    QCOMPARE(hit, RyVec3(1, 2, 3));
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyVec3 o = random.vector();
        const RyVec3 along = random.direction();
        const RyLine3 ray(o, o + along);
        const RyVec3 normal = ray.getDirection().cross(random.direction());
        QVERIFY(!ray.planeIntersect(random.vector(), normal, hit) ? hit == o : finite(hit));
    }
}

void RyLine3Test::closestPointsMatchLeastSquares()
{
    Random random;
    int tried = 0;
    for (int n = 0; n < Cases; ++n) {
        const RyLine3 one(random.vector(), random.vector());
        const RyLine3 two(random.vector(), random.vector());
        const Vec d1 = vec(one.getDirection());
        const Vec d2 = vec(two.getDirection());
        if (length(cross(d1, d2)) < 0.05)
            continue;
        ++tried;
        Eigen::Matrix<double, 3, 2> system;
        Eigen::Vector3d right;
        for (int i = 0; i < 3; ++i) {
            system(i, 0) = d1[size_t(i)];
            system(i, 1) = -d2[size_t(i)];
            right(i) = double(two.getOrigin()[i]) - one.getOrigin()[i];
        }
        const Eigen::Vector2d t = system.colPivHouseholderQr().solve(right);
        Vec p1{}, p2{};
        for (size_t i = 0; i < 3; ++i) {
            p1[i] = one.getOrigin()[int(i)] + t[0] * d1[i];
            p2[i] = two.getOrigin()[int(i)] + t[1] * d2[i];
        }
        RyVec3 got1, got2, again;
        const float gap = one.minDistanceFromLine(two, got1, got2);
        QVERIFY(distance(got1, p1) < 1e-3);
        QVERIFY(distance(got2, p2) < 1e-3);
        QVERIFY(std::fabs(gap - distance(p1, p2)) < 1e-5);
        QCOMPARE(one.minDistanceFromLine(two, again), gap);
        QCOMPARE(again, got1);
    }
    QVERIFY(tried > Cases / 2);
}

void RyLine3Test::closestPointsOfParallelLines()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyVec3 o1 = random.vector();
        const RyVec3 o2 = random.vector();
        const RyVec3 along = RyVec3::axis(n % 3) * (n % 2 ? 1.0f : -1.0f);
        const RyLine3 one(RyVec3(o1), o1 + along);
        RyVec3 p1, p2;
        const float gap = one.minDistanceFromLine(RyLine3(o2, o2 + along), p1, p2);
        QCOMPARE(p1, o1);
        Vec foot = vec(o2);
        foot[size_t(n % 3)] = o1[n % 3];
        QVERIFY(distance(p2, foot) < 1e-4);
        QVERIFY(std::fabs(gap - distance(vec(o1), foot)) < 1e-4);
    }
    // A line without a direction is a point.
    RyVec3 p1, p2;
    const RyLine3 line(RyVec3(0, 0, 0), RyVec3(1, 0, 0));
    QCOMPARE(line.minDistanceFromLine(RyLine3(RyVec3(3, 4, 0), RyVec3(3, 4, 0)), p1, p2), 4.0f);
    QCOMPARE(p1, RyVec3(3, 0, 0));
    QCOMPARE(RyLine3(RyVec3(3, 4, 0), RyVec3(3, 4, 0)).minDistanceFromLine(line, p1, p2), 4.0f);
    QCOMPARE(p2, RyVec3(3, 0, 0));
    QCOMPARE(RyLine3().minDistanceFromLine(RyLine3(RyVec3(0, 2, 0), RyVec3(0, 2, 0)), p1, p2), 2.0f);
}

void RyLine3Test::nearlyParallelLinesAreParallel()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyVec3 o1 = random.vector();
        const RyVec3 o2 = random.vector();
        const RyVec3 along = random.direction().normalized();
        const RyVec3 across = along.cross(random.direction().normalized());
        if (across.length() < 0.1f)
            continue;
        const RyVec3 aside = across.normalized();
        const RyLine3 one(o1, o1 + along * 100.0f);
        const auto turned = [&](double degrees, float way) {
            const float angle = float(degrees * M_PI / 180.0);
            return RyLine3(o2, o2 + (along * std::cos(angle) + aside * std::sin(angle)) * 100.0f * way);
        };
        RyVec3 p1, p2;
        for (const float way : {1.0f, -1.0f}) {
            for (const double degrees : {0.0, 0.05, 0.7, 1.4}) {
                const RyLine3 two = turned(degrees, way);
                QVERIFY(one.isParallelTo(two) && two.isParallelTo(one));
                const float gap = one.minDistanceFromLine(two, p1, p2);
                QCOMPARE(p1, o1);
                const Vec foot = vec(o2);
                const Vec d = vec(two.getDirection());
                const double t = dot(d, vec(o1 - o2));
                QVERIFY(distance(p2, {foot[0] + d[0] * t, foot[1] + d[1] * t, foot[2] + d[2] * t}) < 1e-3);
                QVERIFY(std::fabs(gap - distance(p1, vec(p2))) < 1e-3);
            }
            for (const double degrees : {1.6, 3.0, 90.0}) {
                const RyLine3 two = turned(degrees, way);
                QVERIFY(!one.isParallelTo(two) && !two.isParallelTo(one));
                one.minDistanceFromLine(two, p1, p2);
                // The closest points see each other square to both lines.
                const double gap = double((p2 - p1).length());
                QVERIFY(std::fabs(dot(vec(p2 - p1), vec(one.getDirection()))) < 1e-2 + 1e-3 * gap);
                QVERIFY(std::fabs(dot(vec(p2 - p1), vec(two.getDirection()))) < 1e-2 + 1e-3 * gap);
            }
        }
        QVERIFY(!one.isParallelTo(RyLine3(o1, o1)) && !RyLine3(o1, o1).isParallelTo(one));
    }
}

void RyLine3Test::noNanFromFiniteInput()
{
    Random random;
    for (int n = 0; n < Cases; ++n) {
        const RyLine3 one(random.anyVector(), random.anyVector());
        const RyLine3 two(random.anyVector(), random.anyVector());
        RyVec3 p1, p2;
        QVERIFY(finite(one.getDirection()));
        one.planeIntersect(random.anyVector(), random.anyVector(), p1);
        QVERIFY(finite(p1));
        QVERIFY(std::isfinite(one.minDistanceFromLine(two, p1, p2)));
        QVERIFY(finite(p1) && finite(p2));
    }
}

RY_TEST(RyLine3Test)
#include "tst_RyLine3.moc"
