#include "rycore/mesh/RyCageCoordinates.h"

#include "mesh/PlainMeanValue.h"
#include "support/RyRandom.h"
#include "support/RyTest.h"

#include <numeric>

class RyCageCoordinatesTest : public QObject
{
    Q_OBJECT
private slots:
    void equalThePublishedForm_data();
    void equalThePublishedForm();
    void giveThePointAndSumUpToOne();
    void areOfTheFacetThatThePointLiesOn();
    void growTowardsAFacetWithoutAJump();
    void areTheSameHoweverQuadsBegin();
    void goOverSmoothlyWhereTheSurfaceIsOpen();
    void goOverSmoothlyWhereTheSumComesToZero();
    void areNoneWithoutArea();
};

namespace {

/// Of a facet whose plane passes by the point as near as 1e-8, hardly more is known in double precision.
constexpr double Exactness = 2e-8;

/// An uneven ball off the middle, with triangles at its poles and bent quads between them.
struct Ball
{
    std::vector<RyVec3> positions;
    std::vector<RyFacet> facets;

    explicit Ball(int rings = 12, int around = 16, float size = 30.0f, RyVec3 middle = {70, -20, 15})
    {
        RyRandom random;
        const auto add = [&](double latitude, double angle) {
            const double radius = size * random.number(0.9, 1.1);
            positions.push_back(middle + RyVec3(float(radius * std::sin(latitude) * std::cos(angle)),
                                                float(1.4 * radius * std::cos(latitude)),
                                                float(0.7 * radius * std::sin(latitude) * std::sin(angle))));
        };
        for (int ring = 1; ring < rings; ++ring) {
            for (int i = 0; i < around; ++i)
                add(M_PI * ring / rings, 2 * M_PI * (i + 0.3) / around);
        }
        const int top = int(positions.size());
        add(0, 0);
        add(M_PI, 0);
        for (int i = 0; i < around; ++i) {
            const int next = (i + 1) % around;
            facets.push_back({{top, next, i, -1}});
            const int last = (rings - 2) * around;
            facets.push_back({{top + 1, last + i, last + next, -1}});
            for (int ring = 0; ring + 2 < rings; ++ring) {
                const int first = ring * around;
                facets.push_back({{first + i, first + next, first + around + next, first + around + i}});
            }
        }
    }
};

std::vector<double> weightsOf(const Ball &ball, const RyVec3 &point, bool withAvx2 = RyCageKernels::hasAvx2())
{
    RyCageCoordinates::Room room;
    RyCageCoordinates(ball.positions, ball.facets).compute(point, room, withAvx2);
    return room.weights();
}

double difference(const std::vector<double> &a, const std::vector<double> &b)
{
    double most = 0.0;
    for (size_t i = 0; i < a.size(); ++i)
        most = std::max(most, std::abs(a[i] - b[i]));
    return a.size() == b.size() ? most : 1e300;
}

std::array<double, 3> meanOf(const std::vector<double> &weights, const std::vector<RyVec3> &values)
{
    std::array<double, 3> result = {};
    for (size_t i = 0; i < weights.size(); ++i) {
        for (int axis = 0; axis < 3; ++axis)
            result[size_t(axis)] += weights[i] * double(values[i][axis]);
    }
    return result;
}

double sumOf(const std::vector<double> &weights)
{
    return std::accumulate(weights.begin(), weights.end(), 0.0);
}

RyVec3 onFacet(const Ball &ball, const RyFacet &facet, const std::array<float, 4> &shares)
{
    RyVec3 point;
    for (int k = 0; k < facet.count(); ++k)
        point += ball.positions[size_t(facet.vertices[k])] * shares[size_t(k)];
    return point;
}

} // namespace

void RyCageCoordinatesTest::equalThePublishedForm_data()
{
    QTest::addColumn<bool>("withAvx2");
    QTest::newRow("any processor") << false;
    if (RyCageKernels::hasAvx2())
        QTest::newRow("AVX2") << true;
}

void RyCageCoordinatesTest::equalThePublishedForm()
{
    QFETCH(bool, withAvx2);
    RyRandom random;
    // A coarse ball, most of whose facets are seen wide, and a fine one, few of whose are.
    for (const Ball &ball : {Ball(5, 7), Ball(60, 81)}) {
        for (int round = 0; round < 12; ++round) {
            // The last ones lie outside.
            const RyVec3 point = RyVec3(70, -20, 15) + (round < 9 ? random.vector(15) : RyVec3(34.5f, 2, float(round)));
            const std::vector<double> expected = PlainMeanValue::weights(ball.positions, ball.facets, point);
            const double off = difference(weightsOf(ball, point, withAvx2), expected);
            QVERIFY2(off < Exactness, qPrintable(QString::number(off)));
        }
    }
}

void RyCageCoordinatesTest::giveThePointAndSumUpToOne()
{
    const Ball ball(20, 31);
    RyRandom random;
    for (int round = 0; round < 100; ++round) {
        const RyVec3 point = RyVec3(70, -20, 15) + random.vector(17);
        const std::vector<double> weights = weightsOf(ball, point);
        QVERIFY(std::abs(sumOf(weights) - 1.0) < 1e-12);
        const std::array<double, 3> mean = meanOf(weights, ball.positions);
        for (int axis = 0; axis < 3; ++axis)
            QVERIFY(std::abs(mean[size_t(axis)] - double(point[axis])) < 1e-6);
    }
}

void RyCageCoordinatesTest::areOfTheFacetThatThePointLiesOn()
{
    const Ball ball(6, 9);
    for (const RyFacet &facet : ball.facets) {
        for (int k = 0; k < facet.count(); ++k) {
            const std::vector<double> atCorner = weightsOf(ball, ball.positions[size_t(facet.vertices[k])]);
            for (size_t v = 0; v < atCorner.size(); ++v)
                QCOMPARE(atCorner[v], int(v) == facet.vertices[k] ? 1.0 : 0.0);
        }
    }
    // Places that can be told in single precision: a prism of triangles and quads.
    Ball prism;
    prism.positions = {{0, 0, 0}, {8, 0, 0}, {0, 8, 0}, {0, 0, 4}, {8, 0, 4}, {0, 8, 4}};
    prism.facets = {{{0, 2, 1, -1}}, {{3, 4, 5, -1}}, {{0, 1, 4, 3}}, {{1, 2, 5, 4}}, {{2, 0, 3, 5}}};
    const auto check = [&](const RyVec3 &point, const std::vector<double> &expected) {
        QVERIFY2(difference(weightsOf(prism, point), expected) < 1e-12,
                 qPrintable(QString("%1 %2 %3").arg(point.x).arg(point.y).arg(point.z)));
    };
    check({2, 4, 4}, {0, 0, 0, 0.25, 0.25, 0.5});
    check({4, 0, 0}, {0.5, 0.5, 0, 0, 0, 0});
    check({8, 0, 3}, {0, 0.25, 0, 0, 0.75, 0});
    check({4, 0, 2}, {0.25, 0.25, 0, 0.25, 0.25, 0}); // the middle of a quad
    check({0, 4, 0}, {0.5, 0, 0.5, 0, 0, 0});
    check({6, 0, 2}, {0.125, 0.375, 0, 0.125, 0.375, 0});
}

void RyCageCoordinatesTest::growTowardsAFacetWithoutAJump()
{
    const Ball ball(7, 8);
    const RyFacet facet = ball.facets[4]; // a quad
    for (const std::array<float, 4> shares :
         {std::array<float, 4>{0.25f, 0.25f, 0.25f, 0.25f}, std::array<float, 4>{0.5f, 0.5f, 0, 0},
          std::array<float, 4>{0, 0, 1, 0}}) {
        const RyVec3 end = onFacet(ball, facet, shares);
        std::vector<double> atEnd(ball.positions.size());
        for (int k = 0; k < 4; ++k)
            atEnd[size_t(facet.vertices[k])] = double(shares[size_t(k)]);
        const RyVec3 way = RyVec3(70, -20, 15) - end;
        for (const float distance : {0.1f, 0.01f, 0.001f, 0.0001f, 0.00001f}) {
            const double inside = difference(weightsOf(ball, end + way * distance), atEnd);
            QVERIFY2(inside < 5.0 * double(distance) + 1e-5, qPrintable(QString::number(inside)));
            const double outside = difference(weightsOf(ball, end - way * distance), atEnd);
            QVERIFY2(outside < 5.0 * double(distance) + 1e-5, qPrintable(QString::number(outside)));
        }
    }
}

void RyCageCoordinatesTest::areTheSameHoweverQuadsBegin()
{
    const Ball ball(14, 17);
    Ball turned = ball;
    RyRandom random;
    for (RyFacet &facet : turned.facets) {
        if (!facet.isTriangle())
            std::rotate(facet.vertices, facet.vertices + random.integer(0, 3), facet.vertices + 4);
    }
    // The mirror image, whose facets go round the other way.
    Ball mirrored = turned;
    for (RyVec3 &position : mirrored.positions)
        position.x = -position.x;
    for (RyFacet &facet : mirrored.facets)
        std::reverse(facet.vertices, facet.vertices + facet.count());
    for (int round = 0; round < 20; ++round) {
        const RyVec3 point = RyVec3(70, -20, 15) + random.vector(20);
        const std::vector<double> weights = weightsOf(ball, point);
        QVERIFY(difference(weights, weightsOf(turned, point)) < Exactness);
        QVERIFY(difference(weights, weightsOf(mirrored, {-point.x, point.y, point.z})) < Exactness);
    }
}

/// The largest step of the mean of the values between neighbours of so many points on a line.
static double largestStep(const Ball &ball, const std::vector<RyVec3> &values, const RyVec3 &from, const RyVec3 &to,
                          int steps)
{
    const RyCageCoordinates coordinates(ball.positions, ball.facets);
    RyCageCoordinates::Room room;
    double largest = 0.0;
    std::array<double, 3> last = {};
    for (int step = 0; step <= steps; ++step) {
        coordinates.compute(from + (to - from) * (float(step) / float(steps)), room);
        if (std::abs(sumOf(room.weights()) - 1.0) > 1e-9)
            return 1e300;
        const std::array<double, 3> mean = meanOf(room.weights(), values);
        for (size_t axis = 0; axis < 3 && step > 0; ++axis)
            largest = std::max(largest, std::abs(mean[axis] - last[axis]));
        last = mean;
    }
    return largest;
}

void RyCageCoordinatesTest::goOverSmoothlyWhereTheSurfaceIsOpen()
{
    Ball bowl(16, 20);
    const std::vector<RyVec3> closed = bowl.positions;
    // Without its upper part, and through the opening.
    std::erase_if(bowl.facets, [&](const RyFacet &facet) {
        return std::any_of(facet.vertices, facet.vertices + facet.count(),
                           [&](int v) { return closed[size_t(v)].y > -5; });
    });
    RyRandom random;
    std::vector<RyVec3> values;
    for (size_t i = 0; i < bowl.positions.size(); ++i)
        values.push_back(random.vector(10));
    const RyVec3 inside(72, -50, 17), outside(66, 80, 12);
    const double coarse = largestStep(bowl, values, inside, outside, 500);
    const double fine = largestStep(bowl, values, inside, outside, 5000);
    QVERIFY2(coarse < 1.0, qPrintable(QString::number(coarse)));
    QVERIFY2(fine < 0.3 * coarse, qPrintable(QString("%1 %2").arg(fine).arg(coarse)));
    // Far outside the nearest part counts most, and nothing less than zero.
    const std::vector<double> weights = weightsOf(bowl, outside);
    QVERIFY(*std::min_element(weights.begin(), weights.end()) >= 0.0);
    QVERIFY(meanOf(weights, bowl.positions)[1] > -35.0);
    // Deep inside it is as good as closed.
    const std::array<double, 3> mean = meanOf(weightsOf(bowl, {72, -58, 17}), bowl.positions);
    QVERIFY(std::abs(mean[1] + 58.0) < 3.0);
}

void RyCageCoordinatesTest::goOverSmoothlyWhereTheSumComesToZero()
{
    // A small ball in a large one: between them, near the small one, the terms cancel out.
    Ball both(16, 20);
    const Ball small(10, 12, 5.0f, {68, -22, 14});
    const int first = int(both.positions.size());
    both.positions.insert(both.positions.end(), small.positions.begin(), small.positions.end());
    for (RyFacet facet : small.facets) {
        for (int k = 0; k < facet.count(); ++k)
            facet.vertices[k] += first;
        both.facets.push_back(facet);
    }
    RyRandom random;
    std::vector<RyVec3> values;
    for (size_t i = 0; i < both.positions.size(); ++i)
        values.push_back(random.vector(10));
    const RyVec3 inside(67, -21, 14), outside(90, -15, 20);
    const double coarse = largestStep(both, values, inside, outside, 500);
    const double fine = largestStep(both, values, inside, outside, 5000);
    QVERIFY2(coarse < 3.0, qPrintable(QString::number(coarse)));
    QVERIFY2(fine < 0.3 * coarse, qPrintable(QString("%1 %2").arg(fine).arg(coarse)));
}

void RyCageCoordinatesTest::areNoneWithoutArea()
{
    Ball none;
    none.positions = {{0, 0, 0}, {1, 2, 3}, {2, 4, 6}};
    none.facets = {};
    QCOMPARE(weightsOf(none, {1, 1, 1}), std::vector<double>(3, 0.0));
    none.facets = {{{0, 1, 2, -1}}};
    QCOMPARE(weightsOf(none, {1, 1, 1}), std::vector<double>(3, 0.0));
    QCOMPARE(weightsOf(none, {1, 2, 3}), std::vector<double>(3, 0.0));
}

RY_TEST(RyCageCoordinatesTest)
#include "tst_RyCageCoordinates.moc"
