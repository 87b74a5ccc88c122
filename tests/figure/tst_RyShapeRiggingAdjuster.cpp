#include "rycore/figure/RyShapeRiggingAdjuster.h"

#include "FigureScene.h"
#include "LimbSection.h"
#include "rycore/base/RyERCLink.h"
#include "rycore/figure/RySymmetricEditing.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyMorph.h"
#include "support/RyNear.h"
#include "support/RyRandom.h"
#include "support/RyTest.h"
#include "support/checkUndo.h"

#include <QScopeGuard>
#include <QSignalSpy>

class RyShapeRiggingAdjusterTest : public QObject
{
    Q_OBJECT
private slots:
    void refusesWhatHasNothingToFollow();
    void followsInOneStep();
    void leavesOtherFiguresAndPosesAlone();
    void doesNothingTheSecondTime();
    void linkedValues_data();
    void linkedValues();
    void bonesThatGoMeanwhile();
    void comesBackWithTheShape();
    void goesAlongWithAMovedMesh();
    void keepsPointsTogether();
    void movesMirroredBonesAlike();
    void meansBothSidesByItself();
    void writesParentsFirstAndTellsOnce();
    void cancelledChangesNothing();
    void keepsJointsOfTheSampleInTheirLimbs();
};

namespace {

/// A thick closed tube along X, symmetric about the middle, with bones in it and beside it. Nothing stands where it
/// stood by default, and the figure is posed, scaled and turned.
struct Tube : FigureScene
{
    static constexpr int Rings = 17;
    static constexpr int Around = 12;

    Tube()
    {
        std::vector<RyVec3> positions;
        for (int ring = 0; ring < Rings; ++ring) {
            for (int i = 0; i < Around; ++i) {
                const double angle = 2 * M_PI * i / Around;
                const float radius = 6.0f + 2.0f * float(std::cos(0.7 * (ring - 8)));
                positions.push_back({5.0f * float(ring - 8), 100 + radius * float(std::cos(angle)),
                                     0.8f * radius * float(std::sin(angle))});
            }
        }
        for (const float x : {-42.0f, 42.0f})
            positions.push_back({x, 100, 0});
        std::vector<RyFacet> facets;
        for (int i = 0; i < Around; ++i) {
            const int next = (i + 1) % Around;
            for (int ring = 0; ring + 1 < Rings; ++ring) {
                const int first = ring * Around;
                facets.push_back({{first + i, first + next, first + Around + next, first + Around + i}});
            }
            facets.push_back({{Rings * Around, next, i, -1}});
            const int last = (Rings - 1) * Around;
            facets.push_back({{Rings * Around + 1, last + i, last + next, -1}});
        }
        RyRandom random;
        for (RyFacet &facet : facets) {
            if (!facet.isTriangle())
                std::rotate(facet.vertices, facet.vertices + random.integer(0, 3), facet.vertices + 4);
        }
        shape = qobject_cast<RyFacetShape *>(figure->getObject()->getCurrentShape());
        mesh = shape->getFacetMesh();
        mesh->setPositions(positions);
        mesh->setFacets(facets);

        hip = bone("hip", figure, {0, 101, 0.5f}, {0, 106, 1});
        lArm = bone("lArm", hip, {8, 100, 1}, {21, 101, -1});
        lHand = bone("lHand", lArm, {21, 101, -1}, {44, 100, 0});
        rArm = bone("rArm", hip, {-8, 100, 1}, {-21, 101, -1});
        rHand = bone("rHand", rArm, {-21, 101, -1}, {-44, 100, 0});
        auto *ring = new RyNode;
        ring->setName("ring");
        lHand->addNodeChild(ring);
        ryScene()->addNode(ring);
        gem = bone("gem", ring, {30, 101, 2}, {30, 109, 2});
        auto *glove = new RyFigure;
        glove->setName("glove");
        lHand->addNodeChild(glove);
        ryScene()->addNode(glove);
        finger = bone("finger", glove, {30, 101, 2}, {33, 101, 2});

        figure->getYRotControl()->setValue(40);
        figure->getXTransControl()->setValue(-7);
        figure->getScaleControl()->setValue(1.25f);
        lArm->getZRotControl()->setValue(25);
        hip->setRotationOrder(RyRotationOrder(RyRotationOrder::ZXY));
        lHand->setOrientation(RyQuat(RyVec3(1, 2, 3).normalized(), 0.4f), true);
        // Moved by hand since.
        lArm->adjustOrigin({9, 99, 0});
        rHand->adjustEndPoint({-40, 103, 2});
        lHand->adjustOrientation(RyQuat(RyVec3(3, 2, 1).normalized(), 0.7f));
    }

    RyBone *bone(const char *name, RyNode *parent, const RyVec3 &origin, const RyVec3 &end)
    {
        RyBone *made = addBone(name, parent, 1000);
        made->setOrigin(origin, true);
        made->setEndPoint(end, true);
        return made;
    }

    /// Shown to 0.8; its value may go from -1 to 2.
    template<typename Move>
    RyMorph *addMorph(const Move &move)
    {
        std::vector<int> vertices;
        std::vector<RyVec3> deltas;
        for (int v = 0; v < mesh->getNumVertices(); ++v) {
            const RyVec3 delta = move(mesh->getVertex(v));
            if (delta != RyVec3()) {
                vertices.push_back(v);
                deltas.push_back(delta);
            }
        }
        auto *morph = new RyMorph("form", vertices, deltas);
        shape->addMorph(morph);
        morph->getValueControl()->setValue(0.8f);
        return morph;
    }
    RyMorph *addBend()
    {
        return addMorph([](const RyVec3 &p) {
            const float by = std::abs(p.x) / 10.0f;
            return RyVec3(0.3f * p.x, by * by, p.x > 12 ? 1.5f : 0.0f);
        });
    }

    std::vector<RyBone *> bones() const { return {hip, lArm, lHand, gem, rArm, rHand}; }

    RyFacetShape *shape;
    RyFacetMesh *mesh;
    RyBone *hip, *lArm, *lHand, *rArm, *rHand, *gem, *finger;
};

void checkAdjusts(RyShapeRiggingAdjuster &adjuster, RyFigure *figure)
{
    const RyError error = adjuster.adjustRiggingToShape(figure);
    QVERIFY2(error.isSuccess(), qPrintable(adjuster.getLastError()));
    QVERIFY(adjuster.getLastError().isEmpty());
}

} // namespace

void RyShapeRiggingAdjusterTest::refusesWhatHasNothingToFollow()
{
    Tube tube;
    RyShapeRiggingAdjuster adjuster;
    QCOMPARE(adjuster.adjustRiggingToShape(nullptr).code(), 96);
    QCOMPARE(adjuster.getLastError(), QString("There is no figure to adjust."));
    RyMorph *morph = tube.addBend();
    morph->getValueControl()->setValue(0);
    const QString before = rySceneDump(*ryScene());
    QCOMPARE(adjuster.adjustRiggingToShape(tube.figure).code(), 96);
    QCOMPARE(adjuster.getLastError(), QString("The figure has no shape that differs from its base."));
    morph->getValueControl()->setValue(1);
    auto *glove = qobject_cast<RyFigure *>(tube.finger->getSkeleton());
    QCOMPARE(adjuster.adjustRiggingToShape(glove).code(), 96);
    QCOMPARE(adjuster.getLastError(), QString("The figure has no facets to follow."));
    tube.mesh->setFacets({});
    QCOMPARE(adjuster.adjustRiggingToShape(tube.figure).code(), 96);
    QCOMPARE(adjuster.getLastError(), QString("The figure has no facets to follow."));
    QCOMPARE(ryUndoStack()->count(), 0);
    morph->getValueControl()->setValue(0);
    QVERIFY(tube.lArm->getOrigin() == RyVec3(9, 99, 0));
}

void RyShapeRiggingAdjusterTest::followsInOneStep()
{
    Tube tube;
    tube.addBend();
    const QString before = rySceneDump(*ryScene());
    RyShapeRiggingAdjuster adjuster;
    checkAdjusts(adjuster, tube.figure);
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryUndoStack()->caption(0), QString("Adjust Rig to Shape"));
    // Inside of the tube the bones go as its parts do, from where their defaults lie.
    QVERIFY(ryIsNear(tube.lHand->getOrigin(), {21 * 1.24f, 101 + 0.8f * 4.41f, -1 + 0.8f * 1.5f}, 0.4f));
    QVERIFY(ryIsNear(tube.rHand->getOrigin(), {-21 * 1.24f, 101 + 0.8f * 4.41f, -1}, 0.4f));
    QVERIFY(ryIsNear(tube.lArm->getOrigin(), {8 * 1.24f, 100 + 0.8f * 0.64f, 1.2f}, 0.4f));
    // Beyond its end as well.
    QVERIFY(ryIsNear(tube.rHand->getEndPoint(), {-44 * 1.24f, 100 + 0.8f * 19.4f, 0}, 1.5f));
    checkLastStep(before);
}

void RyShapeRiggingAdjusterTest::leavesOtherFiguresAndPosesAlone()
{
    Tube tube;
    tube.addBend();
    std::vector<RyVec3> defaults;
    std::vector<RyQuat> orientations;
    for (const RyBone *bone : tube.bones()) {
        defaults.push_back(bone->getOrigin(true));
        defaults.push_back(bone->getEndPoint(true));
        orientations.push_back(bone->getOrientation());
        orientations.push_back(bone->getOrientation(true));
    }
    const RyVec3 gem = tube.gem->getOrigin();
    const RyVec3 finger = tube.finger->getOrigin();
    RyShapeRiggingAdjuster adjuster;
    checkAdjusts(adjuster, tube.figure);
    size_t i = 0;
    for (const RyBone *bone : tube.bones()) {
        QVERIFY(bone->getOrigin(true) == defaults[2 * i] && bone->getEndPoint(true) == defaults[2 * i + 1]);
        QVERIFY(bone->getOrientation() == orientations[2 * i]);
        QVERIFY(bone->getOrientation(true) == orientations[2 * i + 1]);
        ++i;
    }
    QCOMPARE(tube.lArm->getZRotControl()->getValue(), 25.0f);
    QCOMPARE(tube.figure->getScaleControl()->getValue(), 1.25f);
    QVERIFY((tube.gem->getOrigin() - gem).length() > 5.0f);
    QVERIFY(tube.finger->getOrigin() == finger);
}

void RyShapeRiggingAdjusterTest::doesNothingTheSecondTime()
{
    Tube tube;
    tube.addBend();
    RyShapeRiggingAdjuster adjuster;
    checkAdjusts(adjuster, tube.figure);
    const QString once = rySceneDump(*ryScene());
    checkAdjusts(adjuster, tube.figure);
    QCOMPARE(rySceneDump(*ryScene()), once);
    QCOMPARE(ryUndoStack()->count(), 1);
    // What was moved by hand meanwhile comes back.
    tube.lArm->adjustEndPoint({1, 2, 3});
    checkAdjusts(adjuster, tube.figure);
    QCOMPARE(rySceneDump(*ryScene()), once);
    QCOMPARE(ryUndoStack()->count(), 2);
}

void RyShapeRiggingAdjusterTest::linkedValues_data()
{
    QTest::addColumn<bool>("byLaterBone");
    QTest::newRow("what is written later drives what was written before") << true;
    QTest::newRow("what is not written drives a bone") << false;
}

void RyShapeRiggingAdjusterTest::linkedValues()
{
    QFETCH(bool, byLaterBone);
    Tube tube;
    tube.addBend();
    RyShapeRiggingAdjuster adjuster;
    checkAdjusts(adjuster, tube.figure);
    const RyVec3 left = tube.lArm->getOrigin(), right = tube.rArm->getOrigin();
    ryUndoStack()->undo();
    RyFloatProperty *turn = tube.figure->getZRotControl();
    QVERIFY(byLaterBone ? RyERCLink::create(tube.rHand->getEndYControl(), tube.lArm->getOriginYControl())
                        : RyERCLink::create(turn, tube.rArm->getOriginXControl()));
    if (!byLaterBone)
        turn->setValue(12);
    checkAdjusts(adjuster, tube.figure);
    QVERIFY(ryIsNear(tube.lArm->getOrigin(), left, 1e-4f));
    QVERIFY(ryIsNear(tube.rArm->getOrigin(), right, 1e-4f));
    const QString once = rySceneDump(*ryScene());
    checkAdjusts(adjuster, tube.figure);
    QCOMPARE(rySceneDump(*ryScene()), once);
}

/// Who watches the progress may delete what is worked on.
void RyShapeRiggingAdjusterTest::bonesThatGoMeanwhile()
{
    Tube tube;
    tube.addBend();
    RyShapeRiggingAdjuster adjuster;
    adjuster.setProgress([&](double) {
        delete tube.gem;
        tube.gem = nullptr;
        return true;
    });
    const RyVec3 before = tube.rArm->getOrigin();
    checkAdjusts(adjuster, tube.figure);
    QVERIFY(!tube.gem);
    QVERIFY(tube.rArm->getOrigin() != before);
    adjuster.setProgress([&](double) {
        delete tube.figure;
        return true;
    });
    ryUndoStack()->clearAll();
    QCOMPARE(adjuster.adjustRiggingToShape(tube.figure).code(), int(RyError::UnusableObject));
}

void RyShapeRiggingAdjusterTest::comesBackWithTheShape()
{
    Tube tube;
    RyMorph *morph = tube.addBend();
    RyShapeRiggingAdjuster adjuster;
    checkAdjusts(adjuster, tube.figure);
    const RyVec3 whole = tube.lHand->getOrigin() - tube.lHand->getOrigin(true);
    morph->getValueControl()->setValue(0.2f);
    checkAdjusts(adjuster, tube.figure);
    const RyVec3 fourth = tube.lHand->getOrigin() - tube.lHand->getOrigin(true);
    QVERIFY(ryIsNear(fourth, whole * 0.25f, 1e-4f));
    QVERIFY(whole.length() > 4.0f);
}

void RyShapeRiggingAdjusterTest::goesAlongWithAMovedMesh()
{
    Tube tube;
    tube.addMorph([](const RyVec3 &) { return RyVec3(10, -20, 5); });
    RyShapeRiggingAdjuster adjuster;
    checkAdjusts(adjuster, tube.figure);
    for (const RyBone *bone : tube.bones()) {
        QVERIFY(ryIsNear(bone->getOrigin(), bone->getOrigin(true) + RyVec3(8, -16, 4), 1e-4f));
        QVERIFY(ryIsNear(bone->getEndPoint(), bone->getEndPoint(true) + RyVec3(8, -16, 4), 1e-4f));
    }
}

void RyShapeRiggingAdjusterTest::keepsPointsTogether()
{
    Tube tube;
    tube.lHand->adjustOrigin({50, 60, 70});
    tube.addBend();
    RyShapeRiggingAdjuster adjuster;
    checkAdjusts(adjuster, tube.figure);
    QVERIFY(tube.lHand->getOrigin() == tube.lArm->getEndPoint());
    QVERIFY(tube.rHand->getOrigin() == tube.rArm->getEndPoint());
}

void RyShapeRiggingAdjusterTest::movesMirroredBonesAlike()
{
    Tube tube;
    tube.addMorph([](const RyVec3 &p) { return RyVec3(0.002f * p.x * std::abs(p.x), std::abs(p.x) / 7, 0.1f * p.z); });
    RyShapeRiggingAdjuster adjuster;
    checkAdjusts(adjuster, tube.figure);
    const auto isMirrored = [](const RyVec3 &a, const RyVec3 &b) { return ryIsNear({-a.x, a.y, a.z}, b, 2e-5f); };
    QVERIFY(isMirrored(tube.lArm->getOrigin(), tube.rArm->getOrigin()));
    QVERIFY(isMirrored(tube.lHand->getOrigin(), tube.rHand->getOrigin()));
    QVERIFY(isMirrored(tube.lHand->getEndPoint(), tube.rHand->getEndPoint()));
    QCOMPARE(std::abs(tube.hip->getOrigin().x) < 1e-5f, true);
    QVERIFY((tube.lHand->getOrigin() - tube.lHand->getOrigin(true)).length() > 1.0f);
}

/// Where one side stands as the shape wants it and only the other one is written, symmetric editing changes nothing.
void RyShapeRiggingAdjusterTest::meansBothSidesByItself()
{
    Tube tube;
    tube.addMorph([](const RyVec3 &p) { return p.x > 5 ? RyVec3(0.2f * p.x, 2, 0) : RyVec3(-1, 0, 0.1f * p.y); });
    RyShapeRiggingAdjuster adjuster;
    checkAdjusts(adjuster, tube.figure);
    const QString wanted = rySceneDump(*ryScene());
    tube.lArm->setEndPoint(tube.lArm->getEndPoint() + RyVec3(1, 2, 3));
    tube.lHand->setOrigin(tube.lHand->getOrigin() + RyVec3(1, 2, 3));
    tube.hip->setOrigin(tube.hip->getOrigin() + RyVec3(3, 2, 1));
    ryUndoStack()->clearAll();
    RySymmetricEditing::of(*ryScene()).setOn(true);
    const auto off = qScopeGuard([] { RySymmetricEditing::of(*ryScene()).setOn(false); });
    const QString before = rySceneDump(*ryScene());
    checkAdjusts(adjuster, tube.figure);
    QCOMPARE(rySceneDump(*ryScene()), wanted);
    QCOMPARE(ryUndoStack()->count(), 1);
    checkLastStep(before);
}

void RyShapeRiggingAdjusterTest::writesParentsFirstAndTellsOnce()
{
    Tube tube;
    tube.addBend();
    QStringList written, told;
    bool inRigEdit = true;
    for (RyBone *bone : tube.bones()) {
        connect(bone->getOriginYControl(), &RyFloatProperty::currentValueChanged, this, [&, bone] {
            written << bone->getName();
            inRigEdit = inRigEdit && ryScene()->isInRiggingEdit();
        });
        connect(bone, &RyNode::riggingChanged, this, [&, bone] { told << bone->getName(); });
    }
    RyShapeRiggingAdjuster adjuster;
    checkAdjusts(adjuster, tube.figure);
    const QStringList order{"hip", "lArm", "lHand", "gem", "rArm", "rHand"};
    QCOMPARE(written, order);
    QCOMPARE(told, order);
    QVERIFY(inRigEdit && !ryScene()->isInRiggingEdit());
}

void RyShapeRiggingAdjusterTest::cancelledChangesNothing()
{
    Tube tube;
    tube.addBend();
    // More points than are worked out at once.
    for (int i = 0; i < 500; ++i)
        tube.bone(qPrintable(QString("bone%1").arg(i)), tube.hip, {0.06f * float(i), 100, 0},
                  {0.06f * float(i), 101, 0});
    RyShapeRiggingAdjuster adjuster;
    checkAdjusts(adjuster, tube.figure);
    const QString adjusted = rySceneDump(*ryScene());
    ryUndoStack()->undo();
    const QString before = rySceneDump(*ryScene());
    std::vector<double> told;
    adjuster.setProgress([&](double done) {
        told.push_back(done);
        return told.size() < 3;
    });
    QCOMPARE(adjuster.adjustRiggingToShape(tube.figure).code(), int(RyShapeRiggingAdjuster::Cancelled));
    QVERIFY(!adjuster.getLastError().isEmpty());
    QCOMPARE(told.size(), size_t(3));
    QVERIFY(told[0] == 0.0 && told[0] < told[1] && told[1] < told[2] && told[2] < 1.0);
    QCOMPARE(rySceneDump(*ryScene()), before);
    // What was undone before can still be done again.
    QCOMPARE(ryUndoStack()->count(), 1);
    ryUndoStack()->redo();
    QCOMPARE(rySceneDump(*ryScene()), adjusted);
}

void RyShapeRiggingAdjusterTest::keepsJointsOfTheSampleInTheirLimbs()
{
    FigureScene empty;
    ryScene()->clear();
    QString error;
    QVERIFY2(RySceneFile::open(ryScene(), RY_SOURCE_DIR "/resources/samples/mannequin.glb", &error), qPrintable(error));
    auto *figure = qobject_cast<RyFigure *>(ryScene()->getSkeletons().front());
    QVERIFY(figure);
    auto *shape = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(figure));
    // Twice the belly, legs longer by a third, arms by a fifth.
    std::vector<int> vertices;
    std::vector<RyVec3> deltas;
    for (int v = 0; v < shape->getFacetMesh()->getNumVertices(); ++v) {
        const RyVec3 p = shape->getFacetMesh()->getVertex(v);
        const float reach = std::abs(p.y - 106.0f) / 22.0f;
        const float belly = reach < 1.0f && std::abs(p.x) < 25.0f ? (1 - reach * reach) * (1 - reach * reach) : 0.0f;
        const float leg = p.y < 90.0f ? p.y - 90.0f : 0.0f;
        const float arm = p.y > 120.0f && std::abs(p.x) > 20.0f ? std::abs(p.x) - 20.0f : 0.0f;
        vertices.push_back(v);
        deltas.push_back({belly * p.x + std::copysign(0.2f * arm, p.x), 0.33f * leg, belly * p.z});
    }
    auto *morph = new RyMorph("heavy", vertices, deltas);
    shape->addMorph(morph);
    morph->getValueControl()->setValue(1);

    const std::vector<RyFacet> &facets = shape->getFacetMesh()->getFacets();
    const std::vector<std::pair<const char *, int>> joints{{"abdomen", 1},  {"lShin", 1}, {"rShin", 1},
                                                           {"lFoot", 1},    {"rFoot", 1}, {"lForearm", 0},
                                                           {"rForearm", 0}, {"lHand", 0}, {"rHand", 0}};
    RyShapeRiggingAdjuster adjuster;
    checkAdjusts(adjuster, figure);
    double sum = 0.0;
    for (const auto &[name, axis] : joints) {
        const RyBone *bone = figure->findBone(name);
        QVERIFY2(bone, name);
        const LimbSection before(shape->getBasePositions(), facets, bone->getOrigin(true), axis);
        const LimbSection after(shape->getCurrentPositions(), facets, bone->getOrigin(), axis);
        const double off = std::hypot(after.offset[0] - before.offset[0], after.offset[1] - before.offset[1]);
        qInfo("%s: radius %.2f and %.2f cm, off by %.4f radii", name, before.radius, after.radius, off);
        QVERIFY(before.radius > 2.0 && off < 0.1);
        sum += off;
    }
    const double mean = sum / double(joints.size());
    QVERIFY2(mean < 0.03, qPrintable(QString::number(mean)));
    // And along the limbs: knees and elbows go as far as the skin around them.
    const RyBone *shin = figure->findBone("lShin");
    const RyBone *forearm = figure->findBone("lForearm");
    QVERIFY(std::abs(shin->getOrigin().y - (50.0f - 0.33f * 40.0f)) < 0.5f);
    QVERIFY(std::abs(forearm->getOrigin().x - (43.5f + 0.2f * 23.5f)) < 0.5f);
}

RY_TEST(RyShapeRiggingAdjusterTest)
#include "tst_RyShapeRiggingAdjuster.moc"
