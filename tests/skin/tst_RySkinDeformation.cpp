#include "skin/SkinFixture.h"

/// A skin that bends its mesh by general maps, and what reaches it of changes.
class RySkinDeformationTest : public QObject
{
    Q_OBJECT

private slots:
    void skinMatchesPlainLinearBlend();
    void figuresOwnTransformIsLeftOut();
    void unweightedVerticesStayAtRest();
    void restPoseKeepsTheMesh();
    void influencesAreBuiltLazily();
    void changesReachTheNextDeformation();
    void mapsForAnotherMeshFail();
    void missingBonesMoveNothing();
};

void RySkinDeformationTest::skinMatchesPlainLinearBlend()
{
    SkinFixture f(8, 1000);
    const auto weights = f.randomWeights();
    for (size_t i = 0; i < f.bones.size(); ++i)
        f.skin->bindings()[i]->setWeights(ryMapOf(weights[i]));
    f.bones[3]->setInheritScale(false);
    f.poseAll();
    std::vector<RyVec3> out;
    QVERIFY(f.deform(out));
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

void RySkinDeformationTest::figuresOwnTransformIsLeftOut()
{
    SkinFixture f;
    const auto weights = f.randomWeights();
    for (size_t i = 0; i < f.bones.size(); ++i)
        f.skin->bindings()[i]->setWeights(ryMapOf(weights[i]));
    f.poseAll();
    std::vector<RyVec3> before, after;
    QVERIFY(f.deform(before));
    f.skeleton->getYRotControl()->setValue(70);
    f.skeleton->getXTransControl()->setValue(300);
    f.skeleton->getScaleControl()->setValue(3);
    QVERIFY(f.deform(after));
    QCOMPARE(apart(before, after), 0.0);
}

void RySkinDeformationTest::unweightedVerticesStayAtRest()
{
    SkinFixture f(2, 4);
    // Nothing, half of one bone, all of it, two bones.
    f.skin->bindings()[0]->setWeights(ryMapOf({0, 32768, 65535, 65535}));
    f.skin->bindings()[1]->setWeights(ryMapOf({0, 0, 0, 0}));
    f.bones[0]->getXTransControl()->setValue(10);
    const RyVec3 moved = f.bones[0]->figureMap().mapPoint({0, 0, 0});
    QVERIFY(std::fabs(moved.x - 10.0f) < 1e-4f);
    std::vector<RyVec3> out;
    QVERIFY(f.deform(out));
    QCOMPARE(out[0], f.mesh->getVertex(0));
    QVERIFY(std::fabs(out[1].x - (f.mesh->getVertex(1).x + 10.0f * 32768.0f / 65535.0f)) < 1e-4f);
    QVERIFY(std::fabs(out[2].x - (f.mesh->getVertex(2).x + 10.0f)) < 1e-4f);
}

void RySkinDeformationTest::restPoseKeepsTheMesh()
{
    SkinFixture f;
    const auto weights = f.randomWeights();
    for (size_t i = 0; i < f.bones.size(); ++i)
        f.skin->bindings()[i]->setWeights(ryMapOf(weights[i]));
    std::vector<RyVec3> out;
    QVERIFY(f.deform(out));
    QVERIFY(apart(out, f.mesh->getPositions()) < 1e-4);
}

void RySkinDeformationTest::influencesAreBuiltLazily()
{
    SkinFixture f(6, 3000);
    const auto weights = f.randomWeights(2);
    for (size_t i = 0; i < f.bones.size(); ++i)
        f.skin->bindings()[i]->setWeights(ryMapOf(weights[i]));
    QCOMPARE(f.skin->deformer().builds(), 0);
    std::vector<RyVec3> out;
    f.poseAll();
    f.deform(out);
    QCOMPARE(f.skin->deformer().builds(), 1);
    QCOMPARE(f.skin->deformer().lastTouched(), qint64(3000));
    f.deform(out);
    QCOMPARE(f.skin->deformer().lastTouched(), qint64(0));
    // A leaf of the tree moves its own vertices only.
    RyBone *leaf = f.bones.back();
    f.pose(leaf);
    f.deform(out);
    QVERIFY(f.skin->deformer().lastTouched() > 0);
    QCOMPARE(f.skin->deformer().builds(), 1);
    f.mesh->setVertex(5, {1, 2, 3});
    f.deform(out);
    QCOMPARE(f.skin->deformer().lastTouched(), qint64(3000));
    QCOMPARE(f.skin->deformer().builds(), 1);
    // The figure's own transform is no reason to compute anything.
    f.skeleton->getYRotControl()->setValue(20);
    f.deform(out);
    QCOMPARE(f.skin->deformer().lastTouched(), qint64(0));
    f.skin->bindings()[0]->getWeights()->setNumWeights(3000);
    f.deform(out);
    QCOMPARE(f.skin->deformer().builds(), 2);
    f.skin->removeBoneBinding(f.skin->bindings()[2]);
    f.deform(out);
    QCOMPARE(f.skin->deformer().builds(), 3);
}

void RySkinDeformationTest::changesReachTheNextDeformation()
{
    SkinFixture f(5, 400);
    const auto weights = f.randomWeights();
    for (size_t i = 0; i < f.bones.size(); ++i)
        f.skin->bindings()[i]->setWeights(ryMapOf(weights[i]));
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
            binding->setWeights(ryMapOf(f.randomWeights()[0]));
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
        QVERIFY(f.deform(out));
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

void RySkinDeformationTest::mapsForAnotherMeshFail()
{
    SkinFixture f(2, 10);
    f.skin->bindings()[0]->setWeights(ryMapOf(std::vector<quint16>(9, 65535)));
    std::vector<RyVec3> out;
    QVERIFY(!f.deform(out));
    QVERIFY(f.skeleton->getObject()->getDeformedPositions() == f.mesh->getPositions());
    // An empty map and none at all are fine.
    f.skin->bindings()[0]->setWeights(new RyWeightMap);
    QVERIFY(f.deform(out));
    QVERIFY(out == f.mesh->getPositions());
    f.skin->bindings()[0]->setWeights(ryMapOf(std::vector<quint16>(10, 65535)));
    QVERIFY(f.deform(out));
    f.mesh->setPositions(std::vector<RyVec3>(11));
    QVERIFY(!f.deform(out));
}

void RySkinDeformationTest::missingBonesMoveNothing()
{
    SkinFixture f(2, 10);
    f.skin->bindings()[0]->setWeights(ryMapOf(std::vector<quint16>(10, 65535)));
    f.pose(f.bones[0]);
    std::vector<RyVec3> out;
    QVERIFY(f.deform(out));
    QVERIFY(apart(out, f.mesh->getPositions()) > 1.0);
    f.skin->bindings()[0]->setBone(nullptr);
    QVERIFY(f.deform(out));
    QVERIFY(out == f.mesh->getPositions());
    f.skin->bindings()[0]->setWeights(nullptr);
    for (int axis = 0; axis < 3; ++axis)
        f.skin->bindings()[0]->setLocalWeights(ryMapOf(std::vector<quint16>(10, 65535)), axis);
    QVERIFY(f.deform(out));
    QVERIFY(out == f.mesh->getPositions());
}

RY_TEST(RySkinDeformationTest)
#include "tst_RySkinDeformation.moc"
