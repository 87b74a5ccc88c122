#include "skin/NormalsCloud.h"

#include <QObject>

namespace {

using Kind = NormalsCloud::Kind;
using Path = RySkinDeformer::Path;

/// The places whose bits differ.
std::vector<int> differing(const std::vector<RyVec3> &a, const std::vector<RyVec3> &b)
{
    std::vector<int> places;
    for (size_t i = 0; i < a.size(); ++i) {
        if (!(a[i] == b[i]))
            places.push_back(int(i));
    }
    return places;
}

} // namespace

class DeformedNormalsTest : public QObject
{
    Q_OBJECT

private slots:
    void matchesDoubles_data();
    void matchesDoubles();
    void normalsStandOnStretchedSurfaces();
    void similarMapsCarryNormalsThemselves();
    void partsAreRoundedAsTheWhole_data();
    void partsAreRoundedAsTheWhole();
    void exactlyWhatMovesIsTouched();
    void rangesCoverWhatChanged();
    void normalsComeAndGo();
    void manyChannels();
};

void DeformedNormalsTest::matchesDoubles_data()
{
    QTest::addColumn<int>("vertices");
    QTest::addColumn<int>("influences");
    QTest::addColumn<bool>("anyNumber");
    QTest::addColumn<bool>("sheared");
    for (int influences = 1; influences <= 9; ++influences) {
        const QByteArray name = QByteArray::number(influences);
        QTest::newRow("each " + name) << 500 + influences << influences << false << false;
        QTest::newRow("up to " + name) << 700 << influences << true << (influences % 2 == 0);
    }
    QTest::newRow("one vertex") << 1 << 1 << false << false;
    QTest::newRow("three vertices") << 3 << 4 << false << true;
    QTest::newRow("threads") << 50000 << 4 << false << true;
    QTest::newRow("threads, mixed") << 50000 << 5 << true << false;
}

void DeformedNormalsTest::matchesDoubles()
{
    QFETCH(int, vertices);
    QFETCH(int, influences);
    QFETCH(bool, anyNumber);
    QFETCH(bool, sheared);
    const NormalsCloud cloud(vertices, 40, influences, anyNumber, sheared ? Kind::Sheared : Kind::Similar);
    for (const Path path : {Path::Plain, Path::Avx2}) {
        const auto deformer = cloud.deformer(path);
        const std::vector<RyVec3> &positions = deformer->deform(cloud.rest, cloud.maps, &cloud, 1, cloud.given());
        const auto [points, normals] = cloud.apart(positions, deformer->normals());
        QVERIFY2(points < 1e-3, qPrintable(QString::number(points)));
        QVERIFY2(normals < 1e-5, qPrintable(QString::number(normals)));
        QCOMPARE(deformer->normals()[0], RyVec3());
        // Positions do not depend on whether normals are carried.
        RySkinDeformer alone;
        alone.setPath(path);
        alone.setInfluences(vertices, cloud.channels);
        QVERIFY(alone.deform(cloud.rest, cloud.maps) == positions);
        QVERIFY(alone.normals().empty());
    }
}

void DeformedNormalsTest::normalsStandOnStretchedSurfaces()
{
    // The images of two directions of the surface stay at right angles to the image of the normal.
    NormalsCloud cloud(300, 5, 1, false, Kind::Sheared);
    for (RySkinDeformer::Channel &channel : cloud.channels)
        std::fill(channel.weights.begin(), channel.weights.end(), 1.0f);
    const auto deformer = cloud.deformer(Path::Best);
    cloud.run(*deformer);
    bool anyTurned = false;
    for (size_t k = 0; k < cloud.channels.size(); ++k) {
        for (int vertex : cloud.channels[k].vertices) {
            const RyVec3 normal = cloud.normals[size_t(vertex)];
            if (normal == RyVec3())
                continue;
            const RyVec3 along = normal.cross(RyVec3(0, 1, 0.3f));
            const RyVec3 across = normal.cross(along);
            const RyVec3 image = deformer->normals()[size_t(vertex)].normalized();
            QVERIFY(std::abs(image.dot(cloud.maps[k].mapDirection(along).normalized())) < 1e-5f);
            QVERIFY(std::abs(image.dot(cloud.maps[k].mapDirection(across).normalized())) < 1e-5f);
            QVERIFY(image.dot(cloud.maps[k].mapDirection(normal)) > 0.0f);
            anyTurned = anyTurned || (image - cloud.maps[k].mapDirection(normal).normalized()).length() > 0.1f;
        }
    }
    QVERIFY(anyTurned);
}

void DeformedNormalsTest::similarMapsCarryNormalsThemselves()
{
    const RyAffine turn = RyAffine::fromRotation(RyQuat({1, 2, 3}, 1.1f)) * RyAffine::fromTranslation(5, 6, 7);
    for (const RyAffine &map :
         {RyAffine(), turn, RyAffine::fromScale(2.5) * turn, RyAffine::fromScale(-1, 1, 1) * turn})
        QVERIFY(RyNormalMap::of(map) == map);
    // What flattens leaves the normal of the plane, what leaves no plane changes nothing.
    const RyVec3 flat = RyNormalMap::of(RyAffine::fromScale(1, 1, 0)).mapDirection({1, 1, 1});
    QVERIFY(flat.x == 0.0f && flat.y == 0.0f && flat.z != 0.0f);
    QVERIFY(RyNormalMap::of(RyAffine::fromScale(1, 0, 0)) == RyAffine::fromScale(1, 0, 0));
    QVERIFY(RyNormalMap::of(RyAffine::fromScale(0)) == RyAffine::fromScale(0));
    const RyAffine stretched = RyNormalMap::of(RyAffine::fromScale(4, 1, 1));
    QVERIFY(std::abs(stretched.m[1][1] / stretched.m[0][0] - 4.0) < 1e-12);
}

void DeformedNormalsTest::partsAreRoundedAsTheWhole_data()
{
    QTest::addColumn<int>("influences");
    QTest::addColumn<bool>("anyNumber");
    QTest::newRow("one") << 1 << false;
    QTest::newRow("four") << 4 << false;
    QTest::newRow("up to six") << 6 << true;
    QTest::newRow("nine") << 9 << false;
}

void DeformedNormalsTest::partsAreRoundedAsTheWhole()
{
    QFETCH(int, influences);
    QFETCH(bool, anyNumber);
    for (const Path path : {Path::Plain, Path::Avx2}) {
        NormalsCloud cloud(6000, 60, influences, anyNumber);
        const auto stepwise = cloud.deformer(path);
        cloud.run(*stepwise);
        for (int step = 0; step < 60; ++step) {
            for (unsigned moved = 0; moved <= cloud.random() % 3; ++moved)
                cloud.move(cloud.random() % 60, cloud.random() % 4 == 0 ? Kind::Sheared : Kind::Similar);
            cloud.run(*stepwise);
            const auto fresh = cloud.deformer(path);
            const std::vector<RyVec3> &whole = fresh->deform(cloud.rest, cloud.maps, &cloud, 1, cloud.given());
            QVERIFY(differing(stepwise->deform(cloud.rest, cloud.maps, &cloud, 1, cloud.given()), whole).empty());
            QVERIFY(differing(stepwise->normals(), fresh->normals()).empty());
        }
    }
}

void DeformedNormalsTest::exactlyWhatMovesIsTouched()
{
    NormalsCloud cloud(8000, 50, 3, true);
    // A bone here and there, and one that moves a run.
    cloud.channels[0] = {};
    cloud.channels[1] = {};
    for (int v = 0; v < 8000; ++v) {
        if (cloud.random() % 20 == 0) {
            cloud.channels[0].vertices.push_back(v);
            cloud.channels[0].weights.push_back(0.4f);
        }
        if (v >= 3000 && v < 3500) {
            cloud.channels[1].vertices.push_back(v);
            cloud.channels[1].weights.push_back(0.4f);
        }
    }
    const auto deformer = cloud.deformer(Path::Best);
    cloud.run(*deformer);
    const qint64 all = deformer->lastTouched();
    QVERIFY(all > 5000 && all < 8000); // some follow nothing
    cloud.run(*deformer);
    QCOMPARE(deformer->lastTouched(), qint64(0));
    cloud.move(0, Kind::Similar);
    cloud.run(*deformer);
    const auto scattered = qint64(cloud.channels[0].vertices.size());
    QVERIFY2(deformer->lastTouched() >= scattered, qPrintable(QString::number(deformer->lastTouched())));
    QVERIFY2(deformer->lastTouched() <= scattered * 11 / 10, qPrintable(QString::number(deformer->lastTouched())));
    cloud.move(1, Kind::Similar);
    cloud.run(*deformer);
    // At most a block more at either end, for each number of influences.
    QVERIFY(deformer->lastTouched() >= 500);
    QVERIFY(deformer->lastTouched() <= 500 + 5 * 2 * RySkinDeformer::BlockSize);
    const qint64 before = deformer->totalTouched();
    for (size_t k = 0; k < cloud.maps.size(); ++k)
        cloud.move(k, Kind::Similar);
    cloud.run(*deformer);
    QCOMPARE(deformer->totalTouched(), before + deformer->lastTouched());
    QCOMPARE(deformer->lastTouched(), all);
}

void DeformedNormalsTest::rangesCoverWhatChanged()
{
    NormalsCloud cloud(5000, 80, 4, true);
    const auto deformer = cloud.deformer(Path::Best);
    cloud.run(*deformer);
    QVERIFY(deformer->changes().since(0) == std::vector<RyPointChanges::Range>({{0, int(cloud.normals.size())}}));
    for (int step = 0; step < 30; ++step) {
        const std::vector<RyVec3> positions = deformer->deform(cloud.rest, cloud.maps, &cloud, 1, cloud.given());
        const std::vector<RyVec3> normals = deformer->normals();
        const quint64 seen = deformer->changes().revision();
        const size_t channel = cloud.random() % 80;
        cloud.move(channel, step % 3 == 0 ? Kind::Sheared : Kind::Similar);
        cloud.run(*deformer);
        std::vector<bool> covered(cloud.normals.size(), false);
        int count = 0;
        for (const auto &range : deformer->changes().since(seen)) {
            std::fill_n(covered.begin() + range.first, range.count, true);
            count += range.count;
        }
        for (int place : differing(normals, deformer->normals()))
            QVERIFY(covered[size_t(place)]);
        for (int place : differing(positions, deformer->deform(cloud.rest, cloud.maps, &cloud, 1, cloud.given())))
            QVERIFY(covered[size_t(place)]);
        // No more than the groups of what was touched, vertices and further normals.
        QVERIFY(count <= int(deformer->changes().since(0).front().count));
        QVERIFY(count > 0);
    }
    const quint64 seen = deformer->changes().revision();
    cloud.run(*deformer);
    QVERIFY(deformer->changes().since(seen).empty());
}

void DeformedNormalsTest::normalsComeAndGo()
{
    const NormalsCloud cloud(900, 12, 4, true, Kind::Sheared);
    RySkinDeformer deformer;
    deformer.setInfluences(900, cloud.channels);
    const std::vector<RyVec3> positions = deformer.deform(cloud.rest, cloud.maps, &cloud, 1);
    QVERIFY(deformer.normals().empty());
    deformer.setFurtherNormals(cloud.further);
    QVERIFY(deformer.deform(cloud.rest, cloud.maps, &cloud, 1) == positions);
    QVERIFY(deformer.deform(cloud.rest, cloud.maps, &cloud, 1, cloud.given()) == positions);
    QVERIFY(cloud.apart(positions, deformer.normals()).second < 1e-5);
    // The vertices' normals alone.
    deformer.setFurtherNormals({});
    const std::vector<RyVec3> ofVertices(cloud.normals.begin(), cloud.normals.begin() + 900);
    const std::vector<RyVec3> carried = deformer.normals();
    deformer.deform(cloud.rest, cloud.maps, &cloud, 1, {&ofVertices, &cloud.normalMaps});
    QCOMPARE(deformer.normals().size(), size_t(900));
    QVERIFY(std::equal(deformer.normals().begin(), deformer.normals().end(), carried.begin()));
    // Another number of normals than there are places: all as at rest.
    QVERIFY(deformer.deform(cloud.rest, cloud.maps, &cloud, 1, cloud.given()) == cloud.rest);
    QVERIFY(deformer.normals() == cloud.normals);
    QVERIFY(deformer.deform(cloud.rest, cloud.maps, &cloud, 1) == positions);
    QVERIFY(deformer.normals().empty());
}

void DeformedNormalsTest::manyChannels()
{
    // More than the short offsets reach.
    NormalsCloud cloud(3000, 9000, 5, true);
    for (const Path path : {Path::Plain, Path::Avx2}) {
        const auto deformer = cloud.deformer(path);
        const std::vector<RyVec3> &positions = deformer->deform(cloud.rest, cloud.maps, &cloud, 1, cloud.given());
        const auto [points, normals] = cloud.apart(positions, deformer->normals());
        QVERIFY(points < 1e-3 && normals < 1e-5);
        cloud.move(8999, Kind::Sheared);
        cloud.run(*deformer);
        QCOMPARE(deformer->lastTouched(), qint64(cloud.channels[8999].vertices.size()));
        const auto [pointsAfter, normalsAfter] = cloud.apart(positions, deformer->normals());
        QVERIFY(pointsAfter < 1e-3 && normalsAfter < 1e-5);
    }
}

RY_TEST(DeformedNormalsTest)
#include "tst_deformedNormals.moc"
