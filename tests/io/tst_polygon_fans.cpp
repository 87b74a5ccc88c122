#include "rycore/io/RyPolygonFans.h"
#include "support/RyRandom.h"
#include "support/RyTest.h"

#include <numeric>

namespace {

/// Twice the area of a triangle in the plane, below zero where it runs clockwise.
double areaOf(const RyVec3 &a, const RyVec3 &b, const RyVec3 &c)
{
    return double(b.x - a.x) * double(c.y - a.y) - double(c.x - a.x) * double(b.y - a.y);
}

std::vector<size_t> runsOf(const std::vector<unsigned> &triangles)
{
    std::vector<size_t> runs;
    for (size_t t = 0; 3 * t < triangles.size(); t += runs.back())
        runs.push_back(RyPolygonFans::runAt(triangles, t));
    return runs;
}

} // namespace

/// Polygons as triangles from which they can be told again.
class PolygonFansTest : public QObject
{
    Q_OBJECT

private slots:
    /// The start goes where the fan covers the polygon and nothing beside it.
    void concaveQuads()
    {
        const std::vector<RyVec3> arrow = {{0, 0, 0}, {4, 0, 0}, {1, 1, 0}, {0, 4, 0}}; // dented at the third corner
        for (unsigned dent = 0; dent < 4; ++dent) {
            std::vector<RyVec3> corners;
            for (unsigned i = 0; i < 4; ++i)
                corners.push_back(arrow[(i + 6 - dent) % 4]); // the dent comes at `dent`
            RyPolygonFans fans(4);
            const int start = fans.add({0, 1, 2, 3}, corners);
            QCOMPARE(unsigned(start) % 2, dent % 2);
            QCOMPARE(fans.triangles.size(), size_t(6));
            for (size_t t = 0; t < 6; t += 3)
                QVERIFY(areaOf(corners[fans.triangles[t]], corners[fans.triangles[t + 1]],
                               corners[fans.triangles[t + 2]]) > 0.0);
        }
    }

    /// Polygons round one vertex would otherwise all be one.
    void neighbours()
    {
        RyPolygonFans fans(9);
        for (unsigned i = 1; i < 7; i += 2) {
            const double turn = double(i);
            const auto at = [](double angle) { return RyVec3(float(std::cos(angle)), float(std::sin(angle)), 0); };
            fans.add({0, i, i + 1, i + 2}, {{0, 0, 0}, at(turn), at(turn + 0.5), at(turn + 1)});
        }
        QCOMPARE(runsOf(fans.triangles), (std::vector<size_t>{2, 2, 2}));
        QVERIFY(fans.copies.empty());
    }

    void runs()
    {
        QCOMPARE(runsOf({0, 1, 2, 0, 2, 3}), (std::vector<size_t>{2}));
        QCOMPARE(runsOf({0, 1, 2, 0, 3, 4}), (std::vector<size_t>{1, 1})); // begins elsewhere than the last one ended
        QCOMPARE(runsOf({0, 1, 2, 1, 2, 3}), (std::vector<size_t>{1, 1}));
        QCOMPARE(runsOf({0, 1, 2, 0, 2, 3, 0, 3, 4, 5, 3, 4}), (std::vector<size_t>{3, 1}));
    }

    /// Polygons of all sizes, some with corners that are one, come back as many and as large as they were.
    void atRandom()
    {
        RyRandom random;
        for (int round = 0; round < 200; ++round) {
            const unsigned indexCount = unsigned(random.integer(1, 12));
            RyPolygonFans fans(indexCount);
            std::vector<size_t> sizes;
            for (int polygon = random.integer(1, 20); polygon > 0; --polygon) {
                std::vector<unsigned> corners;
                std::vector<RyVec3> positions;
                for (int corner = random.integer(3, 8); corner > 0; --corner) {
                    corners.push_back(unsigned(random.integer(0, int(indexCount) - 1)));
                    positions.push_back(random.vector());
                }
                const int start = fans.add(corners, positions);
                QVERIFY(start >= 0 && start < int(corners.size()));
                sizes.push_back(corners.size() - 2);
            }
            QCOMPARE(runsOf(fans.triangles), sizes);
            for (const unsigned index : fans.triangles)
                QVERIFY(index < indexCount + fans.copies.size());
        }
    }

    /// A round polygon of very many corners takes no longer than its corners.
    void manyCorners()
    {
        constexpr unsigned Corners = 200000;
        std::vector<unsigned> corners(Corners);
        std::iota(corners.begin(), corners.end(), 0u);
        std::vector<RyVec3> positions;
        for (unsigned i = 0; i < Corners; ++i) {
            const double reach = i % 2 ? 1.0 : 0.3; // a star: from no corner can all of it be seen
            const double turn = 6.283185307 * i / Corners;
            positions.emplace_back(float(reach * std::cos(turn)), float(reach * std::sin(turn)), 0.0f);
        }
        RyPolygonFans fans(Corners);
        QElapsedTimer timer;
        timer.start();
        fans.add(corners, positions);
        QCOMPARE(RyPolygonFans::runAt(fans.triangles, 0), size_t(Corners - 2));
        QVERIFY2(timer.elapsed() < 2000, qPrintable(QString::number(timer.elapsed())));
    }
};

RY_TEST(PolygonFansTest)
#include "tst_polygon_fans.moc"
