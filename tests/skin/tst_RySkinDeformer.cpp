#include "skin/SkinFixture.h"

#include <cmath>

namespace {

double apart(const RyVec3 &a, const double b[3])
{
    return std::sqrt((a.x - b[0]) * (a.x - b[0]) + (a.y - b[1]) * (a.y - b[1]) + (a.z - b[2]) * (a.z - b[2]));
}

double apart(const std::vector<RyVec3> &a, const std::vector<RyVec3> &b)
{
    double most = a.size() == b.size() ? 0.0 : 1e30;
    for (size_t i = 0; i < a.size() && i < b.size(); ++i) {
        const double p[3] = {b[i].x, b[i].y, b[i].z};
        most = std::max(most, apart(a[i], p));
    }
    return most;
}

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

    void skinMatchesPlainLinearBlend();
    void figuresOwnTransformIsLeftOut();
    void unweightedVerticesStayAtRest();
    void restPoseKeepsTheMesh();
    void equalLocalMapsGiveTheGeneralResult();
    void oneLocalMapTurnsAboutItsAxisOnly();
    void localMapsMatchStagesInDoubles();
    void scaleMapWeighsTheScaleAlone();
    void influencesAreBuiltLazily();
    void changesReachTheNextDeformation();
    void mapsForAnotherMeshFail();
    void missingBonesMoveNothing();
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

void RySkinDeformerTest::skinMatchesPlainLinearBlend()
{
    SkinFixture f(8, 1000);
    const auto weights = f.randomWeights();
    for (size_t i = 0; i < f.bones.size(); ++i)
        f.skin->bindings()[i]->setWeights(f.mapOf(weights[i]));
    f.bones[3]->setInheritScale(false);
    f.poseAll();
    std::vector<RyVec3> out;
    QVERIFY(f.skin->deform(f.mesh->getPositions(), out));
    QCOMPARE(out.size(), size_t(1000));
    for (int v = 0; v < 1000; ++v) {
        const RyVec3 p = f.mesh->getVertex(v);
        double expected[3] = {0, 0, 0};
        for (size_t i = 0; i < f.bones.size(); ++i) {
            // The world transform maps what is relative to the origin; the figure stands at identity.
            const RyMatrix4 world = f.bones[i]->getWSTransform();
            const RyVec3 local = p - f.bones[i]->getOrigin();
            for (int j = 0; j < 3; ++j) {
                double image = world[3][j];
                for (int r = 0; r < 3; ++r)
                    image += double(local[r]) * world[r][j];
                expected[j] += weights[i][size_t(v)] / 65535.0 * image;
            }
        }
        QVERIFY(apart(out[size_t(v)], expected) < 1e-3);
    }
    QVERIFY(apart(f.skeleton->getObject()->getDeformedPositions(), out) == 0.0);
}

void RySkinDeformerTest::figuresOwnTransformIsLeftOut()
{
    SkinFixture f;
    const auto weights = f.randomWeights();
    for (size_t i = 0; i < f.bones.size(); ++i)
        f.skin->bindings()[i]->setWeights(f.mapOf(weights[i]));
    f.poseAll();
    std::vector<RyVec3> before, after;
    QVERIFY(f.skin->deform(f.mesh->getPositions(), before));
    f.skeleton->getYRotControl()->setValue(70);
    f.skeleton->getXTransControl()->setValue(300);
    f.skeleton->getScaleControl()->setValue(3);
    QVERIFY(f.skin->deform(f.mesh->getPositions(), after));
    QCOMPARE(apart(before, after), 0.0);
}

void RySkinDeformerTest::unweightedVerticesStayAtRest()
{
    SkinFixture f(2, 4);
    // Nothing, half of one bone, all of it, two bones.
    f.skin->bindings()[0]->setWeights(f.mapOf({0, 32768, 65535, 65535}));
    f.skin->bindings()[1]->setWeights(f.mapOf({0, 0, 0, 0}));
    f.bones[0]->getXTransControl()->setValue(10);
    const RyVec3 moved = f.bones[0]->figureMap().mapPoint({0, 0, 0});
    QVERIFY(std::fabs(moved.x - 10.0f) < 1e-4f);
    std::vector<RyVec3> out;
    QVERIFY(f.skin->deform(f.mesh->getPositions(), out));
    QCOMPARE(out[0], f.mesh->getVertex(0));
    QVERIFY(std::fabs(out[1].x - (f.mesh->getVertex(1).x + 10.0f * 32768.0f / 65535.0f)) < 1e-4f);
    QVERIFY(std::fabs(out[2].x - (f.mesh->getVertex(2).x + 10.0f)) < 1e-4f);
}

void RySkinDeformerTest::restPoseKeepsTheMesh()
{
    SkinFixture f;
    const auto weights = f.randomWeights();
    for (size_t i = 0; i < f.bones.size(); ++i)
        f.skin->bindings()[i]->setWeights(f.mapOf(weights[i]));
    std::vector<RyVec3> out;
    QVERIFY(f.skin->deform(f.mesh->getPositions(), out));
    QVERIFY(apart(out, f.mesh->getPositions()) < 1e-4);
}

void RySkinDeformerTest::equalLocalMapsGiveTheGeneralResult()
{
    SkinFixture f(7, 1000);
    const auto weights = f.randomWeights();
    f.bones[2]->setInheritScale(false);
    f.bones[5]->setInheritScale(false);
    f.poseAll();
    for (size_t i = 0; i < f.bones.size(); ++i)
        f.skin->bindings()[i]->setWeights(f.mapOf(weights[i]));
    std::vector<RyVec3> general;
    QVERIFY(f.skin->deform(f.mesh->getPositions(), general));
    double size = 0.0;
    for (const RyVec3 &p : general)
        size = std::max(size, double(p.length()));
    for (size_t i = 0; i < f.bones.size(); ++i) {
        RyBoneBinding *binding = f.skin->bindings()[i];
        binding->setWeights(nullptr);
        for (int axis = 0; axis < 3; ++axis)
            binding->setLocalWeights(f.mapOf(weights[i]), axis);
        if (i % 2)
            binding->setScaleWeights(f.mapOf(weights[i]));
    }
    std::vector<RyVec3> local;
    QVERIFY(f.skin->deform(f.mesh->getPositions(), local));
    QVERIFY(apart(local, f.mesh->getPositions()) > 1.0);
    QVERIFY2(apart(local, general) < 1e-6 * size, qPrintable(QString("%1 of %2").arg(apart(local, general)).arg(size)));
    // A general map goes before local ones.
    f.skin->bindings()[0]->setWeights(f.mapOf(weights[0]));
    f.skin->bindings()[0]->setLocalWeights(f.mapOf(weights[1]), 0);
    QVERIFY(f.skin->deform(f.mesh->getPositions(), local));
    QVERIFY(apart(local, general) < 1e-6 * size);
}

void RySkinDeformerTest::oneLocalMapTurnsAboutItsAxisOnly()
{
    // Weights on one axis alone: turns about the other axes leave the vertices where they are.
    for (int axis = 0; axis < 3; ++axis) {
        SkinFixture f(1, 200);
        RyBone *bone = f.bones[0];
        RyBoneBinding *binding = f.skin->bindings()[0];
        for (int k = 0; k < 3; ++k)
            binding->setLocalWeights(f.mapOf(std::vector<quint16>(200, k == axis ? 65535 : 0)), k);
        RyFloatProperty *controls[3] = {bone->getXRotControl(), bone->getYRotControl(), bone->getZRotControl()};
        std::vector<RyVec3> out;
        controls[(axis + 1) % 3]->setValue(40);
        controls[(axis + 2) % 3]->setValue(-70);
        f.skin->deform(f.mesh->getPositions(), out);
        controls[(axis + 1) % 3]->setValue(0);
        controls[(axis + 2) % 3]->setValue(0);
        // Stages share one rest: only the stage of the weighted axis counts, and it does not turn here.
        QVERIFY(apart(out, f.mesh->getPositions()) < 1e-4);
        controls[axis]->setValue(90);
        f.skin->deform(f.mesh->getPositions(), out);
        const RyVec3 direction = bone->getOrientation().multVec(RyVec3::axis(axis));
        const RyVec3 d = direction.normalized();
        for (int v = 0; v < 200; ++v) {
            // A right angle, right-handed, about the bone axis through the origin.
            const RyVec3 r = f.mesh->getVertex(v) - bone->getOrigin();
            const RyVec3 along = d * d.dot(r);
            const RyVec3 turned = along + d.cross(r);
            QVERIFY((out[size_t(v)] - bone->getOrigin() - turned).length() < 1e-3f);
        }
    }
}

void RySkinDeformerTest::localMapsMatchStagesInDoubles()
{
    // One bone with order YZX under a turned parent, all four maps different: the stages written out with turns of
    // vectors.
    SkinFixture f(2, 300);
    RyBone *parent = f.bones[0];
    RyBone *bone = f.bones[1];
    parent->getZRotControl()->setValue(35);
    parent->getXTransControl()->setValue(4);
    bone->setRotationOrder(RyRotationOrder(RyRotationOrder::YZX));
    bone->setOrientation(RyQuat(), true);
    bone->getXRotControl()->setValue(20);
    bone->getYRotControl()->setValue(-50);
    bone->getZRotControl()->setValue(75);
    bone->getYTransControl()->setValue(-3);
    bone->getXScaleControl()->setValue(1.5f);
    RyBoneBinding *binding = f.skin->bindings()[1];
    std::vector<std::vector<quint16>> weights(4, std::vector<quint16>(300));
    for (auto &list : weights) {
        for (quint16 &w : list)
            w = quint16(f.random() % 65536u);
    }
    for (int axis = 0; axis < 3; ++axis)
        binding->setLocalWeights(f.mapOf(weights[size_t(axis)]), axis);
    binding->setScaleWeights(f.mapOf(weights[3]));

    using Vec = std::array<double, 3>;
    const auto turned = [](const Vec &v, int axis, double degrees) {
        const double s = std::sin(degrees * 3.14159265358979 / 180);
        const double c = std::cos(degrees * 3.14159265358979 / 180);
        const size_t a = size_t(axis + 1) % 3;
        const size_t b = size_t(axis + 2) % 3;
        Vec r = v;
        r[a] = c * v[a] - s * v[b];
        r[b] = s * v[a] + c * v[b];
        return r;
    };
    const RyMatrix4 parentWorld = parent->getWSTransform();
    const RyVec3 parentOrigin = parent->getOrigin();
    const RyVec3 origin = bone->getOrigin();
    const auto toFigure = [&](const Vec &v) {
        const Vec p{v[0] + origin.x - parentOrigin.x, v[1] + origin.y - 3.0 - parentOrigin.y,
                    v[2] + origin.z - parentOrigin.z};
        Vec r;
        for (int j = 0; j < 3; ++j)
            r[size_t(j)] =
                p[0] * parentWorld[0][j] + p[1] * parentWorld[1][j] + p[2] * parentWorld[2][j] + parentWorld[3][j];
        return r;
    };
    std::vector<RyVec3> out;
    QVERIFY(f.skin->deform(f.mesh->getPositions(), out));
    for (int v = 0; v < 300; ++v) {
        const RyVec3 p = f.mesh->getVertex(v);
        const Vec r{double(p.x) - origin.x, double(p.y) - origin.y, double(p.z) - origin.z};
        const Vec stages[5] = {
            toFigure(r),
            toFigure(turned(r, 0, 20)),
            toFigure(turned(turned(r, 2, 75), 0, 20)),
            toFigure(turned(turned(turned(r, 1, -50), 2, 75), 0, 20)),
            toFigure(turned(turned(turned({r[0] * 1.5, r[1], r[2]}, 1, -50), 2, 75), 0, 20)),
        };
        const auto weight = [&](size_t k) { return weights[k][size_t(v)] / 65535.0; };
        const double shares[5] = {(weight(0) + weight(1) + weight(2)) / 3, weight(0), weight(2), weight(1), weight(3)};
        Vec expected{p.x, p.y, p.z};
        for (size_t j = 0; j < 3; ++j) {
            const double from = expected[j];
            for (size_t k = 0; k < 5; ++k)
                expected[j] += shares[k] * (stages[k][j] - (k == 0 ? from : stages[k - 1][j]));
        }
        QVERIFY(apart(out[size_t(v)], expected.data()) < 1e-3);
    }
}

void RySkinDeformerTest::scaleMapWeighsTheScaleAlone()
{
    SkinFixture f(1, 100);
    RyBone *bone = f.bones[0];
    RyBoneBinding *binding = f.skin->bindings()[0];
    for (int axis = 0; axis < 3; ++axis)
        binding->setLocalWeights(f.mapOf(std::vector<quint16>(100, 65535)), axis);
    binding->setScaleWeights(f.mapOf(std::vector<quint16>(100, 0)));
    bone->getScaleControl()->setValue(2);
    std::vector<RyVec3> out;
    QVERIFY(f.skin->deform(f.mesh->getPositions(), out));
    QVERIFY(apart(out, f.mesh->getPositions()) < 1e-4);
    binding->getScaleWeights()->beginEdit();
    std::fill_n(binding->getScaleWeights()->getWeights(), 100, quint16(13107));
    binding->getScaleWeights()->finishEdit();
    QVERIFY(f.skin->deform(f.mesh->getPositions(), out));
    for (int v = 0; v < 100; ++v) {
        const RyVec3 r = f.mesh->getVertex(v) - bone->getOrigin();
        QVERIFY((out[size_t(v)] - (bone->getOrigin() + r * 1.2f)).length() < 1e-3f);
    }
}

void RySkinDeformerTest::influencesAreBuiltLazily()
{
    SkinFixture f(6, 3000);
    const auto weights = f.randomWeights(2);
    for (size_t i = 0; i < f.bones.size(); ++i)
        f.skin->bindings()[i]->setWeights(f.mapOf(weights[i]));
    QCOMPARE(f.skin->deformer().builds(), 0);
    std::vector<RyVec3> out;
    f.poseAll();
    f.skin->deform(f.mesh->getPositions(), out);
    QCOMPARE(f.skin->deformer().builds(), 1);
    QCOMPARE(f.skin->deformer().lastTouched(), qint64(3000));
    f.skin->deform(f.mesh->getPositions(), out);
    QCOMPARE(f.skin->deformer().lastTouched(), qint64(0));
    // A leaf of the tree moves its own vertices only.
    RyBone *leaf = f.bones.back();
    f.pose(leaf);
    f.skin->deform(f.mesh->getPositions(), out);
    QVERIFY(f.skin->deformer().lastTouched() > 0);
    QCOMPARE(f.skin->deformer().builds(), 1);
    f.mesh->setVertex(5, {1, 2, 3});
    f.skin->deform(f.mesh->getPositions(), out);
    QCOMPARE(f.skin->deformer().lastTouched(), qint64(3000));
    QCOMPARE(f.skin->deformer().builds(), 1);
    // The figure's own transform is no reason to compute anything.
    f.skeleton->getYRotControl()->setValue(20);
    f.skin->deform(f.mesh->getPositions(), out);
    QCOMPARE(f.skin->deformer().lastTouched(), qint64(0));
    f.skin->bindings()[0]->getWeights()->setNumWeights(3000);
    f.skin->deform(f.mesh->getPositions(), out);
    QCOMPARE(f.skin->deformer().builds(), 2);
    f.skin->removeBoneBinding(f.skin->bindings()[2]);
    f.skin->deform(f.mesh->getPositions(), out);
    QCOMPARE(f.skin->deformer().builds(), 3);
}

void RySkinDeformerTest::changesReachTheNextDeformation()
{
    SkinFixture f(5, 400);
    const auto weights = f.randomWeights();
    for (size_t i = 0; i < f.bones.size(); ++i)
        f.skin->bindings()[i]->setWeights(f.mapOf(weights[i]));
    std::vector<RyVec3> out;
    for (int step = 0; step < 60; ++step) {
        RyBoneBinding *binding = f.skin->bindings()[f.random() % unsigned(f.skin->getNumBoneBindings())];
        RyBone *bone = f.bones[f.random() % f.bones.size()];
        switch (f.random() % 7) {
        case 0:
            f.mesh->setVertex(int(f.random() % 400u), {1, 2, 3});
            break;
        case 1:
            binding->getWeights()->beginEdit();
            binding->getWeights()->getWeights()[f.random() % 400u] = quint16(f.random());
            binding->getWeights()->finishEdit();
            break;
        case 2:
            binding->setWeights(f.mapOf(f.randomWeights()[0]));
            break;
        case 3:
            bone->setRotationOrder(RyRotationOrder(int(f.random() % 6u)));
            break;
        case 4:
            bone->setInheritScale(!bone->inheritsScale());
            break;
        case 5:
            bone->setOrigin({float(f.number(-9, 9)), 4, 5});
            break;
        default:
            f.pose(bone);
        }
        QVERIFY(f.skin->deform(f.mesh->getPositions(), out));
        for (int v = 0; v < 400; ++v) {
            const RyVec3 p = f.mesh->getVertex(v);
            double expected[3] = {p.x, p.y, p.z};
            for (const RyBoneBinding *b : f.skin->bindings()) {
                const RyAffine &map = b->getBone()->figureMap();
                const double from[3] = {p.x, p.y, p.z};
                for (int j = 0; j < 3; ++j) {
                    const double image =
                        from[0] * map.m[0][j] + from[1] * map.m[1][j] + from[2] * map.m[2][j] + map.m[3][j];
                    expected[j] += b->getWeights()->getWeight(v) / 65535.0 * (image - from[j]);
                }
            }
            QVERIFY(apart(out[size_t(v)], expected) < 2e-3);
        }
    }
}

void RySkinDeformerTest::mapsForAnotherMeshFail()
{
    SkinFixture f(2, 10);
    f.skin->bindings()[0]->setWeights(f.mapOf(std::vector<quint16>(9, 65535)));
    std::vector<RyVec3> out;
    QVERIFY(!f.skin->deform(f.mesh->getPositions(), out));
    QVERIFY(f.skeleton->getObject()->getDeformedPositions() == f.mesh->getPositions());
    // An empty map and none at all are fine.
    f.skin->bindings()[0]->setWeights(new RyWeightMap);
    QVERIFY(f.skin->deform(f.mesh->getPositions(), out));
    QVERIFY(out == f.mesh->getPositions());
    f.skin->bindings()[0]->setWeights(f.mapOf(std::vector<quint16>(10, 65535)));
    QVERIFY(f.skin->deform(f.mesh->getPositions(), out));
    f.mesh->setPositions(std::vector<RyVec3>(11));
    QVERIFY(!f.skin->deform(f.mesh->getPositions(), out));
}

void RySkinDeformerTest::missingBonesMoveNothing()
{
    SkinFixture f(2, 10);
    f.skin->bindings()[0]->setWeights(f.mapOf(std::vector<quint16>(10, 65535)));
    f.pose(f.bones[0]);
    std::vector<RyVec3> out;
    QVERIFY(f.skin->deform(f.mesh->getPositions(), out));
    QVERIFY(apart(out, f.mesh->getPositions()) > 1.0);
    f.skin->bindings()[0]->setBone(nullptr);
    QVERIFY(f.skin->deform(f.mesh->getPositions(), out));
    QVERIFY(out == f.mesh->getPositions());
    f.skin->bindings()[0]->setWeights(nullptr);
    for (int axis = 0; axis < 3; ++axis)
        f.skin->bindings()[0]->setLocalWeights(f.mapOf(std::vector<quint16>(10, 65535)), axis);
    QVERIFY(f.skin->deform(f.mesh->getPositions(), out));
    QVERIFY(out == f.mesh->getPositions());
}

RY_TEST(RySkinDeformerTest)
#include "tst_RySkinDeformer.moc"
