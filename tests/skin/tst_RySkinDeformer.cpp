#include "skin/SkinFixture.h"

namespace {

RyAffine randomMap(std::mt19937 &random)
{
    std::uniform_real_distribution<double> number(-1.5, 1.5);
    RyAffine map;
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 3; ++j)
            map.m[i][j] = (i == 3 ? 20.0 : 1.0) * number(random);
    }
    return map;
}

/// A cloud of vertices with influences of random number, and maps.
struct Cloud
{
    Cloud(int vertexCount, int channelCount, int mostInfluences, unsigned seed) : random(seed)
    {
        std::uniform_real_distribution<float> place(-100.0f, 100.0f);
        std::uniform_real_distribution<float> weight(0.0f, 1.0f);
        channels.resize(size_t(channelCount));
        for (int v = 0; v < vertexCount; ++v) {
            rest.push_back({place(random), place(random), place(random)});
            const int count = int(random() % unsigned(mostInfluences + 1));
            for (int k = 0; k < count; ++k) {
                RySkinDeformer::Channel &channel = channels[random() % channels.size()];
                if (!channel.vertices.empty() && channel.vertices.back() == v)
                    continue;
                channel.vertices.push_back(v);
                channel.weights.push_back(weight(random));
            }
        }
        for (int k = 0; k < channelCount; ++k)
            maps.push_back(randomMap(random));
    }

    /// v + sum of w (v X - v) in double precision, channel by channel.
    std::vector<std::array<double, 3>> expected() const
    {
        std::vector<std::array<double, 3>> result;
        for (const RyVec3 &v : rest)
            result.push_back({v.x, v.y, v.z});
        for (size_t k = 0; k < channels.size(); ++k) {
            for (size_t i = 0; i < channels[k].vertices.size(); ++i) {
                const size_t v = size_t(channels[k].vertices[i]);
                const double in[3] = {rest[v].x, rest[v].y, rest[v].z};
                for (int j = 0; j < 3; ++j) {
                    double image = maps[k].m[3][j];
                    for (int r = 0; r < 3; ++r)
                        image += in[r] * maps[k].m[r][j];
                    result[v][size_t(j)] += double(channels[k].weights[i]) * (image - in[j]);
                }
            }
        }
        return result;
    }

    std::mt19937 random;
    std::vector<RyVec3> rest;
    std::vector<RySkinDeformer::Channel> channels;
    std::vector<RyAffine> maps;
};

} // namespace

/// The blend of maps on its own: what it gives, and what it computes again.
class RySkinDeformerTest : public QObject
{
    Q_OBJECT

private slots:
    void bothPathsMatchDoubles_data();
    void bothPathsMatchDoubles();
    void identityKeepsEveryBit();
    void unchangedInputTouchesNothing();
    void oneMapTouchesOnlyItsBlocks();
    void wrongSizesGiveTheRestPositions();
};

void RySkinDeformerTest::bothPathsMatchDoubles_data()
{
    QTest::addColumn<int>("vertices");
    QTest::addColumn<int>("channels");
    QTest::addColumn<int>("influences");
    QTest::newRow("one") << 1 << 1 << 1;
    QTest::newRow("few") << 37 << 3 << 2;
    QTest::newRow("four") << 5000 << 60 << 4;
    QTest::newRow("many influences") << 3000 << 40 << 14;
    QTest::newRow("threads") << 60000 << 150 << 5;
}

void RySkinDeformerTest::bothPathsMatchDoubles()
{
    QFETCH(int, vertices);
    QFETCH(int, channels);
    QFETCH(int, influences);
    const Cloud cloud(vertices, channels, influences, ryTestSeed());
    const auto expected = cloud.expected();
    for (const auto path : {RySkinDeformer::Path::Plain, RySkinDeformer::Path::Avx2, RySkinDeformer::Path::Best}) {
        RySkinDeformer deformer;
        deformer.setPath(path);
        deformer.setInfluences(vertices, cloud.channels);
        const std::vector<RyVec3> &result = deformer.deform(cloud.rest, cloud.maps);
        QCOMPARE(result.size(), expected.size());
        for (size_t v = 0; v < result.size(); ++v)
            QVERIFY(apart(result[v], expected[v].data()) < 1e-3 * influences);
    }
}

void RySkinDeformerTest::identityKeepsEveryBit()
{
    Cloud cloud(3000, 20, 7, ryTestSeed());
    cloud.maps.assign(20, RyAffine());
    RySkinDeformer deformer;
    deformer.setInfluences(3000, cloud.channels);
    QVERIFY(deformer.deform(cloud.rest, cloud.maps) == cloud.rest);
    deformer.setPath(RySkinDeformer::Path::Plain);
    QVERIFY(deformer.deform(cloud.rest, cloud.maps) == cloud.rest);
}

void RySkinDeformerTest::unchangedInputTouchesNothing()
{
    Cloud cloud(3000, 20, 4, ryTestSeed());
    RySkinDeformer deformer;
    deformer.setInfluences(3000, cloud.channels);
    const std::vector<RyVec3> first = deformer.deform(cloud.rest, cloud.maps, &cloud, 1);
    QVERIFY(deformer.lastTouched() > 0);
    QVERIFY(deformer.deform(cloud.rest, cloud.maps, &cloud, 1) == first);
    QCOMPARE(deformer.lastTouched(), qint64(0));
    // Rest positions of unknown revision are always taken.
    cloud.rest[0].x += 1.0f;
    deformer.deform(cloud.rest, cloud.maps);
    QVERIFY(deformer.lastTouched() > 0);
    cloud.rest[1].x += 1.0f;
    deformer.deform(cloud.rest, cloud.maps, &cloud, 2);
    QVERIFY(deformer.lastTouched() > 0);
    const auto expected = cloud.expected();
    const std::vector<RyVec3> &last = deformer.deform(cloud.rest, cloud.maps, &cloud, 3);
    for (size_t v = 0; v < last.size(); ++v)
        QVERIFY(apart(last[v], expected[v].data()) < 5e-3);
}

void RySkinDeformerTest::oneMapTouchesOnlyItsBlocks()
{
    // Bones along a line: each moves a run of 500 vertices.
    const int runs = 40;
    std::vector<RyVec3> rest;
    std::vector<RySkinDeformer::Channel> channels(runs);
    for (int v = 0; v < runs * 500; ++v) {
        rest.push_back({float(v), 1.0f, 2.0f});
        channels[size_t(v / 500)].vertices.push_back(v);
        channels[size_t(v / 500)].weights.push_back(1.0f);
    }
    std::vector<RyAffine> maps(runs);
    RySkinDeformer deformer;
    deformer.setInfluences(int(rest.size()), channels);
    deformer.deform(rest, maps, &rest, 1);
    QCOMPARE(deformer.lastTouched(), qint64(rest.size()));
    maps[7] = RyAffine::fromTranslation(0, 10, 0);
    const std::vector<RyVec3> &result = deformer.deform(rest, maps, &rest, 1);
    QVERIFY(deformer.lastTouched() >= 500);
    QVERIFY(deformer.lastTouched() <= 500 + 2 * RySkinDeformer::BlockSize);
    for (int v = 0; v < runs * 500; ++v)
        QCOMPARE(result[size_t(v)], RyVec3(float(v), v / 500 == 7 ? 11.0f : 1.0f, 2.0f));
    QCOMPARE(deformer.totalTouched(), qint64(rest.size()) + deformer.lastTouched());

    // Any series of partial changes ends where a fresh deformer starts.
    Cloud cloud(5000, 60, 5, ryTestSeed());
    RySkinDeformer stepwise;
    stepwise.setInfluences(5000, cloud.channels);
    stepwise.deform(cloud.rest, cloud.maps, &cloud, 1);
    for (int step = 0; step < 50; ++step) {
        cloud.maps[cloud.random() % 60] = randomMap(cloud.random);
        RySkinDeformer fresh;
        fresh.setInfluences(5000, cloud.channels);
        QVERIFY(stepwise.deform(cloud.rest, cloud.maps, &cloud, 1) == fresh.deform(cloud.rest, cloud.maps));
    }
}

void RySkinDeformerTest::wrongSizesGiveTheRestPositions()
{
    Cloud cloud(50, 4, 3, ryTestSeed());
    RySkinDeformer deformer;
    deformer.setInfluences(50, cloud.channels);
    const std::vector<RyVec3> fewer(cloud.rest.begin(), cloud.rest.end() - 1);
    QVERIFY(deformer.deform(fewer, cloud.maps) == fewer);
    QVERIFY(deformer.deform(cloud.rest, {}) == cloud.rest);
    cloud.channels[0].vertices.push_back(50);
    cloud.channels[0].weights.push_back(1.0f);
    deformer.setInfluences(50, cloud.channels);
    QCOMPARE(deformer.deform(cloud.rest, cloud.maps).size(), size_t(50));
}

RY_TEST(RySkinDeformerTest)
#include "tst_RySkinDeformer.moc"
