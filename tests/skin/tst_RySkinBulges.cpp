#include "skin/ShownFigure.h"

#include "rycore/undo/RyUndoStack.h"

#include <QSignalSpy>

namespace {

/// An arm along +Y, 20 cm long from the origin, that moves no vertex but bulges all of them on its left when it turns
/// about X. The first vertex stands 3 cm beside it, the second one on its line, the third one beside the line behind
/// the end.
struct Arm : SkinFixture
{
    Arm() : SkinFixture(1, 3)
    {
        bone()->setOrigin({0, 0, 0}, true);
        bone()->setEndPoint({0, 20, 0}, true);
        bone()->setOrientation(RyQuat(), true);
        mesh->setPositions({{3, 8, 0}, {0, 5, 0}, {0, 50, -4}});
        bulge->setLeftWeights(ryMapOf({65535, 65535, 32768}));
        bulge->getPosLeftBulgeController()->setValue(0.1f);
        bulge->getNegLeftBulgeController()->setValue(-0.05f);
        skin->bindings()[0]->setBulgeBinding(0, bulge);
    }
    RyBone *bone() const { return bones[0]; }
    std::vector<RyVec3> at(float degrees)
    {
        bone()->getXRotControl()->setValue(degrees);
        std::vector<RyVec3> out;
        deform(out);
        return out;
    }

    RyBulgeBinding *bulge = new RyBulgeBinding(0);
};

} // namespace

/// How far bulges push vertices, and where to.
class RySkinBulgesTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { ryUndoStack()->clearAll(); }
    void pushesAtRightAnglesToTheBone();
    void growsWithTheTurn();
    void matchesTheFormula();
    void localMapsMoveWhatWasPushed();
    void valuesAreDrawnWithoutAnotherSkin();
    void mirroredBulgesGiveMirroredVertices();
    void clipsMoveWithoutBulges();
    void mapsOfAnotherLength();
    void withoutBulgesNothingIsKept();
    void manyVertices();
};

void RySkinBulgesTest::pushesAtRightAnglesToTheBone()
{
    Arm arm;
    // 20 cm times 0.1 at a right angle.
    QCOMPARE(arm.at(90)[0], RyVec3(5, 8, 0));
    QCOMPARE(arm.at(90)[1], RyVec3(0, 5, 0));
    QVERIFY(std::fabs(arm.at(90)[2].z - -5.00001526f) < 1e-5f);
    QCOMPARE(arm.at(90)[2].y, 50.0f);
    QCOMPARE(arm.at(-45)[0], RyVec3(2.5f, 8, 0));
    // Both sides add up, and each has its own values.
    arm.bulge->setRightWeights(ryMapOf({65535, 0, 0}));
    arm.bulge->getPosRightBulgeController()->setValue(0.2f);
    QCOMPARE(arm.at(90)[0], RyVec3(9, 8, 0));
    QCOMPARE(arm.at(-90)[0], RyVec3(2, 8, 0));
    arm.bulge->getNegRightBulgeController()->setValue(1);
    QCOMPARE(arm.at(-90)[0], RyVec3(22, 8, 0));
    // The other turns do nothing, and neither does the default.
    arm.bone()->getYRotControl()->setValue(50);
    arm.bone()->getZRotControl()->setValue(50);
    arm.bulge->getPosLeftBulgeController()->setDefaultValue(3);
    QCOMPARE(arm.at(90)[0], RyVec3(9, 8, 0));
    QVERIFY(arm.at(0) == arm.mesh->getPositions());
    // On the line of a slanted bone nothing is pushed, however single precision rounds the place.
    arm.bone()->setOrigin({11.3f, 97.1f, -3.7f});
    arm.bone()->setEndPoint({18.9f, 121.7f, 4.1f});
    const RyVec3 between = arm.bone()->getOrigin() + (arm.bone()->getEndPoint() - arm.bone()->getOrigin()) * 0.37f;
    arm.mesh->setVertex(0, between);
    QCOMPARE(arm.at(90)[0], between);
    arm.bone()->setOrigin({0, 0, 0});
    // A bone without length has no line.
    arm.bone()->setEndPoint({0, 0, 0});
    QVERIFY(arm.at(90) == arm.mesh->getPositions());
}

void RySkinBulgesTest::growsWithTheTurn()
{
    Arm arm;
    const float x = arm.mesh->getVertex(0).x;
    const float whole = arm.at(80)[0].x - x;
    QVERIFY(whole > 1);
    for (const float share : {0.5f, 0.25f, 0.01f, 1e-5f})
        QVERIFY(std::fabs(arm.at(80 * share)[0].x - x - share * whole) < 1e-5f);
    QVERIFY(std::fabs(arm.at(1e-4f)[0].x - arm.at(-1e-4f)[0].x) < 1e-5f);
    // Beyond a right angle it goes on.
    QVERIFY(std::fabs(arm.at(160)[0].x - x - 2 * whole) < 1e-5f);
    arm.bulge->getPosLeftBulgeController()->setValue(0.3f);
    QVERIFY(std::fabs(arm.at(80)[0].x - x - 3 * whole) < 1e-5f);
    arm.bulge->getPosLeftBulgeController()->setValue(-0.1f);
    QVERIFY(std::fabs(arm.at(80)[0].x - x + whole) < 1e-5f);
}

void RySkinBulgesTest::matchesTheFormula()
{
    BulgedFigure f;
    f.addBulge(0, 0);
    f.addBulge(0, 2);
    for (int axis = 0; axis < 3; ++axis)
        f.addBulge(2, axis);
    f.addBulge(5, 1);
    for (int turn = 0; turn < 12; ++turn) {
        f.poseAll(turn % 3 != 0);
        f.morph->getValueControl()->setValue(turn % 4 == 0 ? 0.0f : float(f.number(0.2, 1)));
        const double error = f.error();
        QVERIFY2(error < 2e-3, qPrintable(QString("seed %1: %2").arg(ryTestSeed()).arg(error)));
        const std::vector<RyVec3> &rest = f.shape()->getCurrentPositions();
        double pushed = 0.0;
        for (int vertex = 0; vertex < f.mesh->getNumVertices(); ++vertex)
            pushed = std::max(pushed, apart(rest[size_t(vertex)], f.pushed(vertex).data()));
        QVERIFY(pushed > 0.5);
    }
}

void RySkinBulgesTest::localMapsMoveWhatWasPushed()
{
    BulgedFigure f;
    f.addBulge(1, 0);
    f.addBulge(3, 1);
    f.poseAndBulge();
    for (RyBoneBinding *binding : f.skin->boneBindingIterator()) {
        for (int axis = 0; axis < 3; ++axis)
            binding->setLocalWeights(f.someWeights(), axis);
        binding->setScaleWeights(f.someWeights());
        binding->setWeights(nullptr);
    }
    std::vector<RyVec3> pushed;
    for (int vertex = 0; vertex < f.mesh->getNumVertices(); ++vertex) {
        const BulgedFigure::Point at = f.pushed(vertex);
        pushed.push_back({float(at[0]), float(at[1]), float(at[2])});
    }
    const ShownFigure bulged(f);
    f.skin->bindings()[1]->setBulgeBinding(0, nullptr);
    f.skin->bindings()[3]->setBulgeBinding(1, nullptr);
    QVERIFY(apart(bulged.positions, ShownFigure(f).positions) > 0.5);
    f.mesh->setPositions(pushed);
    QVERIFY(apart(bulged.positions, ShownFigure(f).positions) < 1e-3);
}

void RySkinBulgesTest::valuesAreDrawnWithoutAnotherSkin()
{
    Arm arm;
    arm.at(90);
    QSignalSpy drawn(arm.skeleton->getObject(), &RyObject::contentChanged);
    QSignalSpy skins(arm.skin, &RySkinBinding::skinChanged);
    arm.bulge->getPosLeftBulgeController()->setValue(0.2f);
    QCOMPARE(drawn.count(), 1);
    QCOMPARE(skins.count(), 0);
    QCOMPARE(arm.at(90)[0], RyVec3(7, 8, 0));
    arm.bulge->setRightWeights(ryMapOf({1, 2, 3}));
    QCOMPARE(skins.count(), 1);
    arm.bulge->getPosLeftBulgeController()->setDefaultValue(5);
    QCOMPARE(drawn.count(), 2);
    // One that is in no skin.
    const RyRef<RyBulgeBinding> bulge(arm.bulge);
    arm.skin->bindings()[0]->setBulgeBinding(0, nullptr);
    drawn.clear();
    bulge->getPosLeftBulgeController()->setValue(0.3f);
    QCOMPARE(drawn.count(), 0);
    QVERIFY(arm.at(90) == arm.mesh->getPositions());
}

void RySkinBulgesTest::mirroredBulgesGiveMirroredVertices()
{
    for (int across = 0; across < 3; ++across) {
        const auto mirrored = [across](RyVec3 v) {
            v[across] = -v[across];
            return v;
        };
        SkinFixture f(3, 200), g(3, 200); // of the same tree
        std::vector<RyVec3> positions;
        for (const RyVec3 &at : f.mesh->getPositions())
            positions.push_back(mirrored(at));
        g.mesh->setPositions(positions);
        const auto weights = f.randomWeights();
        for (size_t i = 0; i < 3; ++i) {
            RyBone *from = f.bones[i], *to = g.bones[i];
            f.skin->bindings()[i]->setWeights(ryMapOf(weights[i]));
            g.skin->bindings()[i]->setWeights(ryMapOf(weights[i]));
            to->setOrigin(mirrored(from->getOrigin()), true);
            to->setEndPoint(mirrored(from->getEndPoint()), true);
            to->setRotationOrder(from->getRotationOrder());
            RyVec3 axis;
            float angle = 0;
            from->getOrientation().getValue(axis, angle);
            to->setOrientation(RyQuat(mirrored(axis), -angle), true);
        }
        for (int axis = 0; axis < 3; ++axis) {
            RyWeightMap *left = ryMapOf(f.randomWeights()[0]);
            RyWeightMap *right = ryMapOf(f.randomWeights()[1]);
            auto *bulge = new RyBulgeBinding(axis), *other = new RyBulgeBinding(axis);
            const float v[4] = {float(f.number(0.3, 1)), float(f.number(-1, -0.3)), float(f.number(-1, 1)), 0.4f};
            bulge->adjustBulgeValues(v[0], v[1], v[2], v[3]);
            bulge->setLeftWeights(left);
            bulge->setRightWeights(right);
            if (axis == across) {
                other->adjustBulgeValues(v[0], v[1], v[2], v[3]);
                other->setLeftWeights(left->copy());
                other->setRightWeights(right->copy());
            } else {
                other->adjustBulgeValues(v[3], v[2], v[1], v[0]);
                other->setLeftWeights(right->copy());
                other->setRightWeights(left->copy());
            }
            f.skin->bindings()[1]->setBulgeBinding(axis, bulge);
            g.skin->bindings()[1]->setBulgeBinding(axis, other);
            for (size_t i = 0; i < 3; ++i) {
                const float degrees = (f.random() % 2u == 0 ? 1.0f : -1.0f) * float(f.number(30, 110));
                BulgedFigure::turn(f.bones[i], axis)->setValue(degrees);
                BulgedFigure::turn(g.bones[i], axis)->setValue(axis == across ? degrees : -degrees);
            }
        }
        std::vector<RyVec3> shown, other;
        QVERIFY(f.deform(shown) && g.deform(other));
        for (RyVec3 &at : other)
            at = mirrored(at);
        QVERIFY2(apart(shown, other) < 2e-3, qPrintable(QString::number(apart(shown, other))));
        g.skin->bindings()[1]->setBulgeBinding((across + 1) % 3, nullptr);
        QVERIFY(g.deform(other));
        for (RyVec3 &at : other)
            at = mirrored(at);
        QVERIFY(apart(shown, other) > 0.1);
    }
}

void RySkinBulgesTest::clipsMoveWithoutBulges()
{
    Arm arm;
    const std::vector<RyVec3> bulged = arm.at(90);
    const RyAffine played = RyAffine::fromTranslation(0, 30, 0);
    arm.bone()->setPlayedMap(&played);
    std::vector<RyVec3> out;
    QVERIFY(arm.deform(out));
    QVERIFY(out == arm.mesh->getPositions());
    arm.bone()->setPlayedMap(nullptr);
    QVERIFY(arm.deform(out));
    QVERIFY(out == bulged);
}

void RySkinBulgesTest::mapsOfAnotherLength()
{
    Arm arm;
    auto *longer = new RyWeightMap;
    longer->setAffected(9000000, {3, 8999999}, {65535, 65535});
    arm.bulge->setRightWeights(longer);
    arm.bulge->getPosRightBulgeController()->setValue(1);
    QCOMPARE(arm.at(90)[0], RyVec3(5, 8, 0));
    arm.bulge->setLeftWeights(ryMapOf({65535}));
    QCOMPARE(arm.at(90)[0], RyVec3(5, 8, 0));
    arm.mesh->setPositions({{3, 8, 0}, {0, 5, 0}, {0, 50, -4}, {0, 1, 2}});
    QCOMPARE(arm.at(90)[3], RyVec3(0, 1, 22));
    arm.bulge->setLeftWeights(new RyWeightMap);
    QCOMPARE(arm.at(90)[0], RyVec3(3, 8, 0));
    arm.skin->bindings()[0]->setBone(nullptr);
    QVERIFY(arm.at(90) == arm.mesh->getPositions());
}

void RySkinBulgesTest::withoutBulgesNothingIsKept()
{
    Arm arm;
    arm.at(90);
    QVERIFY(arm.skin->bulges().areAny());
    arm.skin->bindings()[0]->setBulgeBinding(0, nullptr);
    arm.at(45);
    QVERIFY(!arm.skin->bulges().areAny());
}

/// Enough of them for threads.
void RySkinBulgesTest::manyVertices()
{
    BulgedFigure f(3, 30000);
    f.addBulge(1, 0)->setLeftWeights(ryMapOf(std::vector<quint16>(30000, 50000)));
    f.addBulge(1, 2);
    f.poseAndBulge();
    QVERIFY(f.error() < 3e-3);
    QVERIFY(f.skin->bulges().lastTouched() > RySkinDeformer::ThreadedAbove);
}

RY_TEST(RySkinBulgesTest)
#include "tst_RySkinBulges.moc"
