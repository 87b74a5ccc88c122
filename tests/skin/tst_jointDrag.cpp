#include "skin/SkinFixture.h"

#include "rycore/scene/RyShapeNormals.h"

#include <set>

namespace {

/// Maps for the bindings: general ones, single axes, or by turns.
void giveMaps(SkinFixture &f, bool general, bool local)
{
    const auto weights = f.randomWeights(3);
    for (size_t i = 0; i < f.bones.size(); ++i) {
        RyBoneBinding *binding = f.skin->bindings()[i];
        if (general && (!local || i % 2 == 0)) {
            binding->setWeights(ryMapOf(weights[i]));
            continue;
        }
        for (int axis = 0; axis < 3; ++axis)
            binding->setLocalWeights(ryMapOf(weights[(i + size_t(axis)) % f.bones.size()]), axis);
        if (i % 3 == 0)
            binding->setScaleWeights(ryMapOf(weights[i]));
    }
}

void giveFacets(SkinFixture &f)
{
    std::vector<RyFacet> facets;
    for (int v = 0; v + 2 < f.mesh->getNumVertices(); v += 2)
        facets.push_back({{v, v + 1, v + 2, -1}});
    f.mesh->setFacets(facets);
}

/// What a drag of a joint does, one move.
void dragJoint(SkinFixture &f, RyBone *bone)
{
    const RyVec3 way(float(f.number(-5, 5)), float(f.number(-5, 5)), float(f.number(-5, 5)));
    switch (f.random() % 3) {
    case 0:
        bone->setOrigin(bone->getOrigin() + way, f.random() % 2 == 0);
        break;
    case 1:
        bone->setEndPoint(bone->getEndPoint() + way, f.random() % 2 == 0);
        break;
    default:
        bone->setOrientation(RyQuat(way, 0.3f) * bone->getOrientation(), f.random() % 2 == 0);
    }
}

} // namespace

class JointDragTest : public QObject
{
    Q_OBJECT

private slots:
    void atRestNothingIsComputed_data()
    {
        QTest::addColumn<bool>("general");
        QTest::addColumn<bool>("local");
        QTest::newRow("general maps") << true << false;
        QTest::newRow("maps for single axes") << false << true;
        QTest::newRow("both kinds") << true << true;
    }
    void atRestNothingIsComputed();
    void posedBonesMoveWhatTheyMove();
    void stagesThatDoNothingMoveNothing();
    void normalsOfLocalMapsMatchGeneralOnes();
    void failedSkinsLeaveNormalsAtRest();
};

void JointDragTest::atRestNothingIsComputed()
{
    QFETCH(bool, general);
    QFETCH(bool, local);
    SkinFixture f(9, 2000);
    giveMaps(f, general, local);
    giveFacets(f);
    f.bones[2]->setInheritScale(false);
    f.bones[7]->setInheritScale(false);
    f.skeleton->getYRotControl()->setValue(25);
    f.skeleton->getXTransControl()->setValue(-60);
    f.skeleton->getScaleControl()->setValue(1.4f);
    RyObject *object = f.skeleton->getObject();
    const quint64 shown = object->getDeformedPoints().revision();
    const qint64 touched = f.skin->deformer().totalTouched();
    QVERIFY(touched > 0);
    QVERIFY(*object->getDeformedPoints().positions == f.mesh->getPositions());
    for (int move = 0; move < 100; ++move) {
        dragJoint(f, f.bones[f.random() % f.bones.size()]);
        QCOMPARE(object->getDeformedPoints().revision(), shown);
    }
    QCOMPARE(f.skin->deformer().totalTouched(), touched);
    QVERIFY(*object->getDeformedPoints().positions == f.mesh->getPositions());
    // Bones that were moved along, not turned, say nothing of their joints either.
    f.bones[4]->getXTransControl()->setValue(3.7f);
    object->getDeformedPoints();
    const qint64 moved = f.skin->deformer().totalTouched();
    QVERIFY(moved > touched);
    for (int move = 0; move < 20; ++move) {
        dragJoint(f, f.bones[4]);
        object->getDeformedPoints();
    }
    QCOMPARE(f.skin->deformer().totalTouched(), moved);
}

void JointDragTest::posedBonesMoveWhatTheyMove()
{
    SkinFixture f(12, 4000);
    // One bone moves a region, others share it here and there, as on a figure.
    std::vector<std::vector<quint16>> weights(12, std::vector<quint16>(4000, 0));
    for (size_t v = 0; v < 4000; ++v) {
        const size_t bone = v * 12 / 4000;
        const size_t other = f.random() % 5 == 0 ? f.random() % 12 : bone;
        weights[other][v] = 20000;
        weights[bone][v] = quint16(weights[bone][v] + 45535);
    }
    for (size_t i = 0; i < 12; ++i)
        f.skin->bindings()[i]->setWeights(ryMapOf(weights[i]));
    giveFacets(f);
    f.skeleton->getZRotControl()->setValue(-15);
    f.skeleton->getScaleControl()->setValue(0.8f);
    for (size_t i = 0; i < 12; i += 2)
        f.pose(f.bones[i]);
    RyObject *object = f.skeleton->getObject();
    object->getDeformedPoints();
    for (int move = 0; move < 40; ++move) {
        std::vector<RyAffine> before;
        for (const RyBone *bone : f.bones)
            before.push_back(bone->figureMap());
        const quint64 shown = object->getDeformedPoints().revision();
        RyBone *bone = f.bones[f.random() % 12];
        bone->setOrigin(bone->getOrigin() + RyVec3(float(f.number(-5, 5)), 2, 1));
        std::set<size_t> moved;
        for (size_t i = 0; i < 12; ++i) {
            for (size_t v = 0; v < 4000 && !(f.bones[i]->figureMap() == before[i]); ++v) {
                if (weights[i][v] > 0)
                    moved.insert(v);
            }
        }
        QVERIFY(bone->isPosed() || moved.empty());
        const RyShapePoints points = object->getDeformedPoints();
        // Blocks of 16, of which at least half is moved, and what is moved else.
        const qint64 touched = points.revision() == shown ? 0 : f.skin->deformer().lastTouched();
        QVERIFY2(touched >= qint64(moved.size()), qPrintable(QString("%1 of %2").arg(touched).arg(moved.size())));
        QVERIFY2(touched <= qint64(2 * moved.size()), qPrintable(QString("%1 of %2").arg(touched).arg(moved.size())));
        std::vector<bool> told(4000, false);
        for (const auto &range : points.changedSince(shown))
            std::fill_n(told.begin() + range.first, range.count, true);
        for (size_t v : moved)
            QVERIFY(told[v]);
    }
}

void JointDragTest::stagesThatDoNothingMoveNothing()
{
    // Vertices that follow the bone's scale alone stay out of its turns, those that follow one axis of those of others.
    SkinFixture f(2, 400);
    RyBoneBinding *binding = f.skin->bindings()[1];
    const auto mapOfHundred = [&](size_t first) {
        std::vector<quint16> weights(400, 0);
        std::fill_n(weights.begin() + std::ptrdiff_t(first), 100, quint16(65535));
        return ryMapOf(weights);
    };
    binding->setLocalWeights(mapOfHundred(0), 0);
    binding->setLocalWeights(mapOfHundred(100), 1);
    binding->setScaleWeights(mapOfHundred(300));
    std::vector<RyVec3> out;
    f.deform(out);
    RyBone *bone = f.bones[1];
    bone->getXTransControl()->setValue(2.5f);
    f.deform(out);
    QCOMPARE(f.skin->deformer().lastTouched(), qint64(200));
    bone->getXRotControl()->setValue(40);
    f.deform(out);
    QCOMPARE(f.skin->deformer().lastTouched(), qint64(100));
    bone->getYRotControl()->setValue(-20);
    f.deform(out);
    QVERIFY(f.skin->deformer().lastTouched() <= 200);
    for (size_t v = 200; v < 400; ++v)
        QCOMPARE(out[v], f.mesh->getVertex(int(v)));
    bone->getScaleControl()->setValue(1.25f);
    f.deform(out);
    QCOMPARE(f.skin->deformer().lastTouched(), qint64(100));
}

void JointDragTest::normalsOfLocalMapsMatchGeneralOnes()
{
    SkinFixture f(7, 1000);
    giveFacets(f);
    const auto weights = f.randomWeights();
    f.bones[2]->setInheritScale(false);
    f.poseAll(); // scales that differ from axis to axis among it
    for (size_t i = 0; i < f.bones.size(); ++i)
        f.skin->bindings()[i]->setWeights(ryMapOf(weights[i]));
    RyObject *object = f.skeleton->getObject();
    const std::vector<RyVec3> general = *object->getDeformedPoints().normals;
    const std::vector<RyVec3> rest = object->getCurrentShape()->getNormals()->normals();
    for (size_t i = 0; i < f.bones.size(); ++i) {
        RyBoneBinding *binding = f.skin->bindings()[i];
        binding->setWeights(nullptr);
        for (int axis = 0; axis < 3; ++axis)
            binding->setLocalWeights(ryMapOf(weights[i]), axis);
    }
    const std::vector<RyVec3> &local = *object->getDeformedPoints().normals;
    QCOMPARE(local.size(), size_t(1000));
    double most = 0.0;
    double mostMoved = 0.0;
    for (size_t v = 0; v < 1000; ++v) {
        most = std::max(most, double((local[v] - general[v]).length()));
        mostMoved = std::max(mostMoved, double((local[v] - rest[v]).length()));
    }
    // A normal that is nearly blended away is turned most by rounding.
    QVERIFY2(most < 1e-3, qPrintable(QString::number(most)));
    QVERIFY(mostMoved > 0.5);
}

void JointDragTest::failedSkinsLeaveNormalsAtRest()
{
    SkinFixture f(2, 10);
    giveFacets(f);
    f.skin->bindings()[0]->setWeights(ryMapOf(std::vector<quint16>(9, 65535)));
    f.pose(f.bones[0]);
    RyObject *object = f.skeleton->getObject();
    const RyShapePoints points = object->getDeformedPoints();
    QCOMPARE(points.positions, &f.mesh->getPositions());
    QCOMPARE(points.normals, &object->getCurrentShape()->getNormals()->normals());
    f.skin->bindings()[0]->setWeights(ryMapOf(std::vector<quint16>(10, 65535)));
    const RyShapePoints posed = object->getDeformedPoints();
    QVERIFY(posed.revision() > points.revision());
    QVERIFY(*posed.positions != f.mesh->getPositions());
    QVERIFY(*posed.normals != object->getCurrentShape()->getNormals()->normals());
    QCOMPARE(posed.changedSince(points.revision()).front().count, 10);
}

RY_TEST(JointDragTest)
#include "tst_jointDrag.moc"
