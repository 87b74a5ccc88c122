#include "skin/BulgedFigure.h"

#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

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

/// Points and normals as they are drawn.
struct Shown
{
    explicit Shown(const BulgedFigure &figure)
    {
        const RyShapePoints points = figure.skeleton->getObject()->getDeformedPoints();
        positions = *points.positions;
        normals = *points.normals;
        revision = points.revision();
        changes = *points.changes;
    }
    bool operator==(const Shown &o) const { return positions == o.positions && normals == o.normals; }
    /// Whether all that differs from an earlier picture lies in what is said to have changed since.
    bool tellsWhatDiffersFrom(const Shown &before) const
    {
        std::vector<char> told(normals.size(), 0);
        for (const RyPointChanges::Range &range : changes.since(before.revision))
            std::fill_n(told.begin() + range.first, range.count, 1);
        for (size_t place = 0; place < normals.size(); ++place) {
            const bool isVertex = place < positions.size();
            if (!told[place] && (!(normals[place] == before.normals[place]) ||
                                 (isVertex && !(positions[place] == before.positions[place]))))
                return false;
        }
        return true;
    }

    std::vector<RyVec3> positions;
    std::vector<RyVec3> normals;
    quint64 revision = 0;
    RyPointChanges changes;
};

/// What a skin that knows nothing of before makes of the figure: all maps are announced anew.
Shown shownAnew(BulgedFigure &figure)
{
    RyObject *object = figure.skeleton->getObject();
    const RyRef<RySkinBinding> old(figure.skin);
    auto *anew = new RySkinBinding;
    object->removeModifier(old.get());
    for (const RyBoneBinding *binding : old->bindings())
        anew->addBoneBinding(binding->copyFor(binding->getBone()));
    object->addModifier(anew);
    const Shown shown(figure);
    object->removeModifier(anew);
    object->addModifier(old.get());
    return shown;
}

} // namespace

class RySkinBulgesTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { ryUndoStack()->clearAll(); }
    void pushesAtRightAnglesToTheBone();
    void growsWithTheTurn();
    void matchesTheFormula();
    void localMapsMoveWhatWasPushed();
    void normalsAreThoseOfThePushedFacets();
    void everyWayToAPoseGivesTheSame();
    void oneBoneTouchesItsOwnVertices();
    void valuesAreDrawnWithoutAnotherSkin();
    void undoAndRedoAreExact();
    void mirroredBulgesGiveMirroredVertices();
    void whatBulgedComesBackFromRest();
    void morphsBesideBulges();
    void anotherObject();
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
    const Shown bulged(f);
    f.skin->bindings()[1]->setBulgeBinding(0, nullptr);
    f.skin->bindings()[3]->setBulgeBinding(1, nullptr);
    QVERIFY(apart(bulged.positions, Shown(f).positions) > 0.5);
    f.mesh->setPositions(pushed);
    QVERIFY(apart(bulged.positions, Shown(f).positions) < 1e-3);
}

void RySkinBulgesTest::normalsAreThoseOfThePushedFacets()
{
    BulgedFigure f;
    f.addBulge(1, 0);
    f.addBulge(4, 2);
    f.poseAndBulge();
    f.morph->getValueControl()->setValue(0.5f);
    const Shown bulged(f);
    QVERIFY(bulged.normals.size() > bulged.positions.size()); // there are sharp edges
    std::vector<RyVec3> pushed;
    for (int vertex = 0; vertex < f.mesh->getNumVertices(); ++vertex) {
        const BulgedFigure::Point at = f.pushed(vertex);
        pushed.push_back({float(at[0]), float(at[1]), float(at[2])});
    }
    f.skin->bindings()[1]->setBulgeBinding(0, nullptr);
    f.skin->bindings()[4]->setBulgeBinding(2, nullptr);
    const Shown plain(f);
    f.morph->getValueControl()->setValue(0);
    f.mesh->setPositions(pushed);
    const Shown wanted(f);
    QVERIFY(apart(plain.normals, wanted.normals) > 0.1);
    QVERIFY(apart(bulged.normals, wanted.normals) < 1e-3);
}

void RySkinBulgesTest::everyWayToAPoseGivesTheSame()
{
    BulgedFigure f;
    std::vector<RyBulgeBinding *> bulges{f.addBulge(0, 0), f.addBulge(2, 1), f.addBulge(2, 2), f.addBulge(5, 0)};
    f.poseAndBulge();
    Shown before(f);
    for (int step = 0; step < 150; ++step) {
        RyBone *bone = f.bones[f.random() % f.bones.size()];
        RyBulgeBinding *bulge = bulges[f.random() % bulges.size()];
        switch (f.random() % 10) {
        case 0:
            f.setValues(bulge);
            break;
        case 1:
            bulge->getPosLeftBulgeController()->setValue(float(f.number(-1, 1)));
            break;
        case 2:
            bulge->setLeftWeights(f.random() % 3u == 0 ? nullptr : f.someWeights());
            break;
        case 3:
            if (RyWeightMap *map = bulge->getRightWeights()) {
                map->beginEdit();
                map->getWeights()[f.random() % 300u] = quint16(f.random());
                map->finishEdit();
            }
            break;
        case 4:
            bone->setEndPoint(bone->getEndPoint() + RyVec3(float(f.number(-3, 3)), 1, 0));
            break;
        case 5:
            f.mesh->setVertex(int(f.random() % 300u), {float(f.number(-9, 9)), 2, 3});
            break;
        case 6:
            f.morph->getValueControl()->setValue(float(f.random() % 3u) / 2);
            break;
        case 7:
            f.poseAndBulge();
            for (RyBone *each : f.random() % 4u == 0 ? f.bones : std::vector<RyBone *>()) { // nothing is pushed
                for (int axis = 0; axis < 3; ++axis)
                    BulgedFigure::turn(each, axis)->setValue(0);
            }
            break;
        case 8:
            BulgedFigure::turn(bone, int(f.random() % 3u))->setValue(float(f.number(-120, 120)));
            break;
        default:
            f.pose(bone);
        }
        const Shown after(f);
        QVERIFY2(after.tellsWhatDiffersFrom(before), qPrintable(QString("step %1").arg(step)));
        const double error = f.error();
        QVERIFY2(error < 3e-3, qPrintable(QString("step %1: %2").arg(step).arg(error)));
        if (step % 3 == 0) {
            QVERIFY2(after == shownAnew(f), qPrintable(QString("step %1").arg(step)));
            before = Shown(f);
        } else {
            before = after;
        }
    }
}

void RySkinBulgesTest::oneBoneTouchesItsOwnVertices()
{
    BulgedFigure f(4, 2000);
    // One bone moves no vertex and bulges few; another one moves some.
    RyBoneBinding *thin = f.skin->bindings()[3];
    std::vector<quint16> none(2000, 0), few(2000, 0);
    thin->setWeights(ryMapOf(none));
    for (size_t vertex = 500; vertex < 530; ++vertex)
        few[vertex] = 40000;
    RyBulgeBinding *bulge = f.addBulge(3, 0);
    bulge->setLeftWeights(ryMapOf(few));
    bulge->setRightWeights(nullptr);
    bulge->adjustBulgeValues(0.4f, 0.4f, 0, 0);
    f.addBulge(0, 1);
    f.poseAndBulge();
    RyObject *object = f.skeleton->getObject(); // nobody asks for normals, which reach further
    const std::vector<RyVec3> before = object->getDeformedPositions();
    f.bones[3]->getXRotControl()->setValue(-100);
    const std::vector<RyVec3> after = object->getDeformedPositions();
    QCOMPARE(f.skin->bulges().lastTouched(), qint64(30));
    QVERIFY(f.skin->deformer().lastTouched() <= 200); // those and what shares their groups
    for (size_t vertex = 0; vertex < 2000; ++vertex)
        QCOMPARE(after[vertex] == before[vertex], few[vertex] == 0);
    // What moves vertices and bulges nothing touches no bulge, and what changed nothing touches nothing.
    f.bones[1]->getXTransControl()->setValue(f.bones[1]->getXTransControl()->getValue() + 3);
    QVERIFY(!(object->getDeformedPositions() == after));
    QCOMPARE(f.skin->bulges().lastTouched(), qint64(0));
    object->getDeformedPositions();
    QCOMPARE(f.skin->deformer().lastTouched(), qint64(0));
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

void RySkinBulgesTest::undoAndRedoAreExact()
{
    BulgedFigure f;
    RyBulgeBinding *bulge = f.addBulge(1, 0);
    f.poseAndBulge();
    std::vector<Shown> states{Shown(f)};
    const auto edit = [&](auto work) {
        RyUndoStackHold hold;
        work();
        hold.accept("bulge");
        states.emplace_back(f);
        QVERIFY(!(states.back() == states[states.size() - 2]));
    };
    edit([&] { bulge->adjustBulgeValues(0.9f, 0.8f, 0.7f, -0.9f); });
    edit([&] { bulge->setLeftWeights(f.someWeights()); });
    edit([&] {
        bulge->getLeftWeights()->beginEdit();
        std::fill_n(bulge->getLeftWeights()->getWeights(), 100, quint16(60000));
        bulge->getLeftWeights()->finishEdit();
    });
    edit([&] { f.addBulge(2, 1)->setRightWeights(f.someWeights()); });
    edit([&] { f.skin->bindings()[1]->setBulgeBinding(0, nullptr); });
    edit([&] { BulgedFigure::turn(f.bones[2], 1)->setValue(17); });
    for (size_t i = states.size() - 1; i > 0; --i) {
        ryUndoStack()->undo();
        QVERIFY(Shown(f) == states[i - 1]);
    }
    for (size_t i = 1; i < states.size(); ++i) {
        ryUndoStack()->redo();
        QVERIFY(Shown(f) == states[i]);
    }
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

void RySkinBulgesTest::whatBulgedComesBackFromRest()
{
    BulgedFigure f;
    f.addBulge(1, 0);
    f.addBulge(2, 0);
    for (int round = 0; round < 3; ++round) {
        for (const size_t bone : {1, 2}) {
            RyFloatProperty *turn = BulgedFigure::turn(f.bones[bone], 0);
            turn->setValue(80);
            QVERIFY(f.error() < 2e-3);
            turn->setValue(0);
            QVERIFY(f.error() < 2e-3);
        }
    }
}

/// A morph moves vertices that nothing pushes.
void RySkinBulgesTest::morphsBesideBulges()
{
    BulgedFigure f(6, 1000);
    std::vector<quint16> few(1000, 0);
    std::fill_n(few.begin() + 100, 20, quint16(50000));
    RyBulgeBinding *bulge = f.addBulge(1, 0);
    bulge->setLeftWeights(ryMapOf(few));
    bulge->setRightWeights(nullptr);
    auto *far = new RyMorph("far", {600, 601}, {{5, 1, 0}, {0, 7, 3}});
    f.shape()->addMorph(far);
    f.poseAndBulge();
    const Shown before(f);
    far->getValueControl()->setValue(0.5f);
    const Shown after(f);
    QVERIFY(!(after.positions[600] == before.positions[600]) && !(after.normals[600] == before.normals[600]));
    QVERIFY(after.tellsWhatDiffersFrom(before));
    QCOMPARE(f.skin->bulges().lastTouched(), qint64(0));
    QVERIFY(f.error() < 2e-3);
    QVERIFY(after == shownAnew(f));
}

/// The skin goes to another object, with as many vertices.
void RySkinBulgesTest::anotherObject()
{
    BulgedFigure f;
    f.addBulge(1, 0);
    f.addBulge(2, 2);
    f.poseAndBulge();
    const Shown before(f);
    auto *mesh = new RyFacetMesh;
    std::vector<RyVec3> positions = f.mesh->getPositions();
    std::reverse(positions.begin(), positions.end());
    mesh->setPositions(positions);
    mesh->setFacets(f.mesh->getFacets());
    auto *shape = new RyFacetShape(mesh);
    shape->setParts(f.shape()->getParts());
    const RyRef<RyObject> old(f.skeleton->getObject());
    const RyRef<RySkinBinding> skin(f.skin);
    const RyRef<RyObject> other(new RyObject);
    other->addShape(shape);
    const auto moveSkin = [&](RyObject *from, RyObject *to) {
        from->removeModifier(f.skin);
        to->addModifier(f.skin);
        f.skeleton->setObject(to);
    };
    moveSkin(old.get(), other.get());
    QVERIFY(f.error() < 2e-3);
    QVERIFY(Shown(f) == shownAnew(f));
    moveSkin(other.get(), old.get());
    QVERIFY(Shown(f) == before);
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
