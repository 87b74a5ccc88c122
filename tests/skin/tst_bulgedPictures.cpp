#include "skin/ShownFigure.h"

#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

/// What is drawn of bulges, and what is said to have changed, whatever way led there.
class BulgedPicturesTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { ryUndoStack()->clearAll(); }
    void normalsAreThoseOfThePushedFacets();
    void everyWayToAPoseGivesTheSame();
    void oneBoneTouchesItsOwnVertices();
    void undoAndRedoAreExact();
    void whatBulgedComesBackFromRest();
    void morphsBesideBulges();
    void anotherObject();
};

void BulgedPicturesTest::normalsAreThoseOfThePushedFacets()
{
    BulgedFigure f;
    f.addBulge(1, 0);
    f.addBulge(4, 2);
    f.poseAndBulge();
    f.morph->getValueControl()->setValue(0.5f);
    const ShownFigure bulged(f);
    QVERIFY(bulged.normals.size() > bulged.positions.size()); // there are sharp edges
    std::vector<RyVec3> pushed;
    for (int vertex = 0; vertex < f.mesh->getNumVertices(); ++vertex) {
        const BulgedFigure::Point at = f.pushed(vertex);
        pushed.push_back({float(at[0]), float(at[1]), float(at[2])});
    }
    f.skin->bindings()[1]->setBulgeBinding(0, nullptr);
    f.skin->bindings()[4]->setBulgeBinding(2, nullptr);
    const ShownFigure plain(f);
    f.morph->getValueControl()->setValue(0);
    f.mesh->setPositions(pushed);
    const ShownFigure wanted(f);
    QVERIFY(apart(plain.normals, wanted.normals) > 0.1);
    QVERIFY(apart(bulged.normals, wanted.normals) < 1e-3);
}

void BulgedPicturesTest::everyWayToAPoseGivesTheSame()
{
    BulgedFigure f;
    std::vector<RyBulgeBinding *> bulges{f.addBulge(0, 0), f.addBulge(2, 1), f.addBulge(2, 2), f.addBulge(5, 0)};
    f.poseAndBulge();
    ShownFigure before(f);
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
        const ShownFigure after(f);
        QVERIFY2(after.tellsWhatDiffersFrom(before), qPrintable(QString("step %1").arg(step)));
        const double error = f.error();
        QVERIFY2(error < 3e-3, qPrintable(QString("step %1: %2").arg(step).arg(error)));
        if (step % 3 == 0) {
            QVERIFY2(after == shownAnew(f), qPrintable(QString("step %1").arg(step)));
            before = ShownFigure(f);
        } else {
            before = after;
        }
    }
}

void BulgedPicturesTest::oneBoneTouchesItsOwnVertices()
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

void BulgedPicturesTest::undoAndRedoAreExact()
{
    BulgedFigure f;
    RyBulgeBinding *bulge = f.addBulge(1, 0);
    f.poseAndBulge();
    std::vector<ShownFigure> states{ShownFigure(f)};
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
        QVERIFY(ShownFigure(f) == states[i - 1]);
    }
    for (size_t i = 1; i < states.size(); ++i) {
        ryUndoStack()->redo();
        QVERIFY(ShownFigure(f) == states[i]);
    }
}

void BulgedPicturesTest::whatBulgedComesBackFromRest()
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
void BulgedPicturesTest::morphsBesideBulges()
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
    const ShownFigure before(f);
    far->getValueControl()->setValue(0.5f);
    const ShownFigure after(f);
    QVERIFY(!(after.positions[600] == before.positions[600]) && !(after.normals[600] == before.normals[600]));
    QVERIFY(after.tellsWhatDiffersFrom(before));
    QCOMPARE(f.skin->bulges().lastTouched(), qint64(0));
    QVERIFY(f.error() < 2e-3);
    QVERIFY(after == shownAnew(f));
}

/// The skin goes to another object, with as many vertices.
void BulgedPicturesTest::anotherObject()
{
    BulgedFigure f;
    f.addBulge(1, 0);
    f.addBulge(2, 2);
    f.poseAndBulge();
    const ShownFigure before(f);
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
    QVERIFY(ShownFigure(f) == shownAnew(f));
    moveSkin(other.get(), old.get());
    QVERIFY(ShownFigure(f) == before);
}

RY_TEST(BulgedPicturesTest)
#include "tst_bulgedPictures.moc"
