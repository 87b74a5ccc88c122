#include "tool_actions/RySkinnedScene.h"

#include "pluginsource/RyJointTools/operations/bakePose.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEEditActions.h"
#include "rycore/app/RyApp.h"
#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyMorph.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/restore/RyRestorePoints.h"
#include "support/RyTest.h"
#include "tool_actions/RyMessageBoxes.h"

namespace {

/// A figure that stands elsewhere about a centre of its own, bent, with current values that are no defaults, a prop on
/// its foot and a morph that is shown.
struct BentScene : RySkinnedScene
{
    explicit BentScene(Maps maps = General) : RySkinnedScene(maps)
    {
        figure->setObject(object);
        figure->setOrigin({10, 20, 30}, true);
        pose();
        figure->getScaleControl()->setValue(1.25f);
        lThigh->setOrigin({12, 93, 4});
        lShin->getOrientZControl()->setValue(-20.0f);
        lShin->setRotationOrder(RyRotationOrder(3));
        lShin->getScaleControl()->setValue(0.8f);
        lFoot->getXTransControl()->setValue(3.0f);
        lFoot->addNodeChild(prop, true);
        RyShape *shape = object->getCurrentShape();
        shape->addMorph(
            new RyMorph(QStringLiteral("smile"), {1, 4, 9, 40}, {{1, 2, 3}, {4, 0, 0}, {0, 5, 0}, {1, 1, 9}}));
        shape->getMorphs().front()->getValueControl()->setValue(0.6f);
        ryUndoStack()->clearAll();
    }

    RyFacetShape *facetShape() const { return qobject_cast<RyFacetShape *>(object->getCurrentShape()); }
    std::vector<RyVec3> shownInWorld() const
    {
        std::vector<RyVec3> points = shown();
        for (RyVec3 &point : points)
            point = figure->worldMap().mapPoint(point);
        return points;
    }
    /// Origins, posed end points and axes of all bones, and where the prop stands.
    std::vector<RyVec3> frames() const
    {
        std::vector<RyVec3> points;
        for (const RyNode *node : std::initializer_list<const RyNode *>{hip, lThigh, lShin, lFoot, rThigh}) {
            points.push_back(node->getWSPos());
            points.push_back(node->getWSEndPoint());
            for (const RyVec3 &axis : {RyVec3(1, 0, 0), RyVec3(0, 1, 0), RyVec3(0, 0, 1)})
                points.push_back(100.0f * node->getWSRot().multVec(node->getOrientation().multVec(axis)));
        }
        for (const RyVec3 &point : {RyVec3(), RyVec3(50, 0, 0), RyVec3(0, 50, 0)})
            points.push_back(prop->worldMap().mapPoint(point));
        return points;
    }
    QStringList posed() const
    {
        QStringList names;
        for (const RyBone *bone : figure->getAllBones()) {
            if (!(bone->getLocalMap() == RyAffine()))
                names.append(bone->getName());
        }
        return names;
    }
};

constexpr float Slack = 2e-3f; // centimetres, of a figure of 140 that is scaled

} // namespace

/// Makes a pose the rest.
class BakePoseTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }

    void nothingMovesInTheWorld_data()
    {
        QTest::addColumn<int>("maps");
        QTest::newRow("general maps") << int(RySkinnedScene::General);
        QTest::newRow("local maps") << int(RySkinnedScene::Local);
        QTest::newRow("both") << int(RySkinnedScene::Both);
    }
    void nothingMovesInTheWorld()
    {
        QFETCH(int, maps);
        BentScene scene(static_cast<RySkinnedScene::Maps>(maps));
        const std::vector<RyVec3> drawn = scene.shownInWorld(), inFigure = scene.shown(), frames = scene.frames();
        const float value = scene.facetShape()->getMorphs().front()->getValueControl()->getValue();
        QVERIFY(bakePose(scene.figure));
        QCOMPARE(scene.posed(), QStringList());
        QVERIFY(ryLargestWay(scene.shownInWorld(), drawn) < Slack);
        QVERIFY(ryLargestWay(scene.frames(), frames) < Slack);
        // The mesh is what was drawn, but for the morph, whose value stays.
        QCOMPARE(scene.facetShape()->getMorphs().front()->getValueControl()->getValue(), value);
        QVERIFY(ryLargestWay(scene.facetShape()->getCurrentPositions(), inFigure) < Slack);
        QVERIFY(ryLargestWay(scene.facetShape()->getBasePositions(), inFigure) > 1.0f);
        QCOMPARE(scene.figure->getOrigin(), RyVec3(10, 20, 30));
        QVERIFY(scene.figure->isPosed());
    }

    void whatBulgesBecomesPartOfTheMesh_data() { nothingMovesInTheWorld_data(); }
    void whatBulgesBecomesPartOfTheMesh()
    {
        QFETCH(int, maps);
        BentScene scene(static_cast<RySkinnedScene::Maps>(maps));
        for (const int axis : {0, 2}) {
            auto *bulge = new RyBulgeBinding(axis);
            bulge->setLeftWeights(ryMapOf(std::vector<quint16>(60, 50000)));
            bulge->adjustBulgeValues(0.5f, 0.4f, 0, 0);
            scene.binding(scene.lShin)->setBulgeBinding(axis, bulge);
        }
        const RyBulgeBinding *bulge = scene.binding(scene.lShin)->getBulgeBinding(0);
        scene.lShin->getXRotControl()->setValue(-50);
        const std::vector<RyVec3> drawn = scene.shownInWorld(), frames = scene.frames();
        const auto bulging = [&] {
            const std::vector<RyVec3> with = scene.shown();
            bulge->getPosLeftBulgeController()->setValue(0);
            bulge->getNegLeftBulgeController()->setValue(0);
            const float way = ryLargestWay(scene.shown(), with);
            bulge->getPosLeftBulgeController()->setValue(0.5f);
            bulge->getNegLeftBulgeController()->setValue(0.4f);
            return way;
        };
        QVERIFY(bulging() > 1.0f);
        QVERIFY(bakePose(scene.figure));
        QVERIFY(ryLargestWay(scene.shownInWorld(), drawn) < Slack);
        QVERIFY(ryLargestWay(scene.frames(), frames) < Slack);
        // Nothing bulges at the new rest; from there on it does as before.
        QCOMPARE(bulging(), 0.0f);
        QCOMPARE(scene.binding(scene.lShin)->getBulgeBinding(0), bulge);
        scene.lShin->getXRotControl()->setValue(25);
        const float once = bulging();
        scene.lShin->getXRotControl()->setValue(50);
        QVERIFY(once > 0.5f);
        // Local maps blend a bend in between, which stretches what was pushed.
        QVERIFY(maps == RySkinnedScene::Local ? bulging() > once : std::abs(bulging() - 2.0f * once) < 0.01f);
    }

    void otherFiguresOnTheBonesStay_data()
    {
        QTest::addColumn<bool>("hasBone");
        QTest::addColumn<bool>("isInner");
        QTest::newRow("that has no bones of its own") << false << false;
        QTest::newRow("with a bone of its own") << true << false;
        QTest::newRow("with a bone of its own that is baked") << true << true;
    }
    /// A prop that became a figure may be moved by a bone of the skeleton on which it hung.
    void otherFiguresOnTheBonesStay()
    {
        QFETCH(bool, hasBone);
        QFETCH(bool, isInner);
        BentScene scene;
        auto *mesh = new RyFacetMesh;
        mesh->setPositions({{0, 0, 0}, {10, 0, 0}, {0, 12, 0}, {3, 4, 15}});
        mesh->setFacets({{{0, 1, 2, -1}, -1}});
        auto *object = new RyObject;
        object->addShape(new RyFacetShape(mesh));
        object->getCurrentShape()->addMorph(new RyMorph(QStringLiteral("long"), {1, 3}, {{5, 1, 0}, {0, 0, 9}}));
        scene.prop->setObject(object);
        RyFigure *ring = RyFigure::convertPropToFigure(scene.prop, QStringLiteral("cuff"), false, true);
        QVERIFY(ring && ring->getAllBones().empty());
        RyBone *cuff = scene.figure->findBone(QStringLiteral("cuff"));
        cuff->getYRotControl()->setValue(35);
        object->getCurrentShape()->getMorphs().front()->getValueControl()->setValue(0.7f);
        RyBone *own = nullptr;
        if (hasBone) {
            own = RyToolScene::makeBone(ring, "clasp", {5, 0, 0}, {9, 3, 0});
            RySkinBinding *skin = ring->getSkinBinding();
            skin->findBoneBinding(cuff)->setWeights(ryMapOf({65535, 30000, 0, 20000}));
            auto *binding = new RyBoneBinding;
            binding->setBone(own);
            binding->setWeights(ryMapOf({0, 35535, 65535, 45535}));
            skin->addBoneBinding(binding);
            own->getZRotControl()->setValue(-30);
            own->getScaleControl()->setValue(1.2f);
        }
        const auto shown = [&] {
            std::vector<RyVec3> points = object->getDeformedPositions();
            for (RyVec3 &point : points)
                point = ring->worldMap().mapPoint(point);
            return points;
        };
        const std::vector<RyVec3> drawn = scene.shownInWorld(), frames = scene.frames(), there = shown();
        const RyVec3 tip = own ? own->getWSEndPoint() : RyVec3();
        QVERIFY(bakePose(isInner ? ring : scene.figure));
        QVERIFY(cuff->isPosed() == isInner);
        QVERIFY(!own || own->isPosed() != isInner);
        QVERIFY(ryLargestWay(shown(), there) < Slack);
        QVERIFY(ryLargestWay(scene.shownInWorld(), drawn) < Slack);
        QVERIFY(ryLargestWay(scene.frames(), frames) < Slack);
        QVERIFY(!own || (own->getWSEndPoint() - tip).length() < Slack);
        QVERIFY(bakePose(isInner ? scene.figure : ring));
        QVERIFY(!cuff->isPosed() && !(own && own->isPosed()));
        QVERIFY(ryLargestWay(shown(), there) < Slack);
    }

    void bonesGetThePosedRestAsDefaultsToo()
    {
        BentScene scene;
        struct Expected
        {
            RyVec3 origin, end;
            RyQuat orientation;
        };
        std::vector<Expected> expected;
        const RyMatrix4 inverse = RyAffine(scene.figure->getWSTransform()).inverse().toMatrix4();
        for (const RyBone *bone : scene.figure->getAllBones()) {
            const RyAffine toFigure = RyAffine(bone->getWSTransform()) * RyAffine(inverse);
            const RyVec3 centre = scene.figure->getOrigin();
            RyQuat turn;
            for (const RyNode *node = bone; qobject_cast<const RyBone *>(node); node = node->getNodeParent())
                turn = turn * node->getLocalRot();
            expected.push_back({toFigure.mapPoint(RyVec3()) + centre,
                                toFigure.mapPoint(bone->getEndPoint() - bone->getOrigin()) + centre,
                                bone->getOrientation() * turn});
        }
        QVERIFY(bakePose(scene.figure));
        for (size_t i = 0; i < expected.size(); ++i) {
            const RyBone *bone = scene.figure->getAllBones()[i];
            for (const bool byDefault : {false, true}) {
                QVERIFY((bone->getOrigin(byDefault) - expected[i].origin).length() < Slack);
                QVERIFY((bone->getEndPoint(byDefault) - expected[i].end).length() < Slack);
                QVERIFY(std::abs(bone->getOrientation(byDefault).dot(expected[i].orientation)) > 0.999999f);
            }
        }
    }

    void limitsOfRotationsGoAlong()
    {
        BentScene scene;
        RyFloatProperty *clamped = scene.lThigh->getXRotControl();
        RyFloatProperty *free = scene.lThigh->getYRotControl();
        RyFloatProperty *narrow = scene.lFoot->getXTransControl();
        for (RyFloatProperty *control : {clamped, free}) {
            control->setMin(-90);
            control->setMax(90);
            control->setValue(30);
        }
        clamped->setIsClamped(true);
        free->setIsClamped(false);
        narrow->setMin(2);
        narrow->setMax(5);
        narrow->setIsClamped(true);
        QVERIFY(bakePose(scene.figure));
        QCOMPARE(clamped->getMin(), -120.0f);
        QCOMPARE(clamped->getMax(), 60.0f);
        QCOMPARE(clamped->getValue(), 0.0f);
        QVERIFY(clamped->isClamped());
        QCOMPARE(free->getMin(), -90.0f);
        QCOMPARE(free->getMax(), 90.0f);
        QCOMPARE(free->getValue(), 0.0f);
        // One that does not allow the cleared value is widened to it.
        QCOMPARE(narrow->getMin(), 0.0f);
        QCOMPARE(narrow->getMax(), 5.0f);
        QCOMPARE(narrow->getValue(), 0.0f);
    }

    void localTransformsAreCleared()
    {
        BentScene scene;
        QVERIFY(bakePose(scene.figure));
        for (const RyBone *bone : scene.figure->getAllBones()) {
            RyVec3 position;
            RyQuat rotation;
            RyMatrix3 scale;
            float general = 0;
            bone->getLocalTransform(position, rotation, scale, general);
            QCOMPARE(position, RyVec3());
            QCOMPARE(rotation, RyQuat());
            for (int axis = 0; axis < 3; ++axis)
                QVERIFY((scale.row(axis) - RyMatrix3().row(axis)).length() < 1e-6f);
            QCOMPARE(general, 1.0f);
        }
    }

    void linkedBonesAreClearedInEitherOrder_data()
    {
        QTest::addColumn<bool>("controlIsFirst");
        QTest::newRow("control before its bone") << true;
        QTest::newRow("control behind its bone") << false;
    }
    void linkedBonesAreClearedInEitherOrder()
    {
        QFETCH(bool, controlIsFirst);
        BentScene scene;
        RyBone *control = controlIsFirst ? scene.hip : scene.rThigh;
        RyBone *driven = scene.lShin;
        auto *outside = new RyNode;
        ryScene()->addNode(outside);
        RyFloatProperty *smile = scene.facetShape()->getMorphs().front()->getValueControl();
        QVERIFY(RyERCLink::create(control->getXRotControl(), driven->getXRotControl()));
        QVERIFY(RyERCLink::create(outside->getZTransControl(), driven->getYRotControl()));
        QVERIFY(RyERCLink::create(driven->getScaleControl(), smile));
        QVERIFY(RyERCLink::create(driven->getXRotControl(), outside->getXRotControl()));
        control->getXRotControl()->setValue(25);
        driven->getXRotControl()->setValue(-40);
        driven->getScaleControl()->setValue(1.3f);
        outside->getZTransControl()->setValue(17);
        const std::vector<RyVec3> drawn = scene.shownInWorld(), frames = scene.frames();
        const float shown = smile->getValue(), turned = outside->getXRotControl()->getValue();
        QCOMPARE(driven->getXRotControl()->getValue(), -15.0f);
        QVERIFY(bakePose(scene.figure));
        QCOMPARE(scene.posed(), QStringList());
        QCOMPARE(control->getXRotControl()->getRawValue(), 0.0f);
        QCOMPARE(driven->getXRotControl()->getRawValue(), 0.0f);
        QCOMPARE(driven->getYRotControl()->getRawValue(), -17.0f);
        QVERIFY(std::abs(smile->getValue() - shown) < 1e-5f);
        QVERIFY(std::abs(outside->getXRotControl()->getValue() - turned) < 1e-4f);
        QVERIFY(ryLargestWay(scene.shownInWorld(), drawn) < Slack);
        QVERIFY(ryLargestWay(scene.frames(), frames) < Slack);
    }

    void boneWithoutTheScaleAboveStays()
    {
        BentScene scene;
        scene.lFoot->setInheritScale(false);
        const std::vector<RyVec3> drawn = scene.shownInWorld(), frames = scene.frames();
        QVERIFY(bakePose(scene.figure));
        QVERIFY(ryLargestWay(scene.shownInWorld(), drawn) < Slack);
        QVERIFY(ryLargestWay(scene.frames(), frames) < Slack);
        QVERIFY(!scene.lFoot->inheritsScale());
    }

    void atRestNothingChanges()
    {
        BentScene scene;
        for (RyBone *bone : scene.figure->getAllBones())
            bone->setLocalTransform(RyVec3(), RyQuat(), RyMatrix3(), 1.0f);
        const QString before = scene.dump();
        const RyFacetMesh *mesh = scene.facetShape()->getFacetMesh();
        QVERIFY(bakePose(scene.figure));
        QCOMPARE(scene.dump(), before);
        QCOMPARE(scene.facetShape()->getFacetMesh(), mesh);
    }

    void meshStaysWhereNoVertexMoves()
    {
        BentScene scene;
        for (RyBone *bone : scene.figure->getAllBones())
            bone->setLocalTransform(RyVec3(), RyQuat(), RyMatrix3(), 1.0f);
        scene.skin->removeBoneBinding(scene.binding(scene.lFoot));
        scene.lFoot->getXRotControl()->setValue(30);
        const RyFacetMesh *mesh = scene.facetShape()->getFacetMesh();
        const std::vector<RyVec3> frames = scene.frames();
        QVERIFY(bakePose(scene.figure));
        QCOMPARE(scene.posed(), QStringList());
        QVERIFY(ryLargestWay(scene.frames(), frames) < Slack);
        QCOMPARE(scene.facetShape()->getFacetMesh(), mesh);
    }

    void unposedBonesKeepTheirNumbers()
    {
        BentScene scene;
        for (RyBone *bone : scene.figure->getAllBones())
            bone->setLocalTransform(RyVec3(), RyQuat(), RyMatrix3(), 1.0f);
        scene.lShin->getXRotControl()->setValue(30);
        const RyVec3 origin = scene.lThigh->getOrigin(), byDefault = scene.lThigh->getOrigin(true);
        QVERIFY(origin != byDefault);
        QVERIFY(bakePose(scene.figure));
        QCOMPARE(scene.lThigh->getOrigin(), origin);
        QCOMPARE(scene.lThigh->getOrigin(true), byDefault);
    }

    // --- The action

    void failuresChangeNothing_data()
    {
        QTest::addColumn<int>("failure");
        const char *const names[] = {"no figure",        "no skin", "no shape", "no mesh", "a map of another length",
                                     "a bone on a thing"};
        for (int failure = 0; failure < 6; ++failure)
            QTest::newRow(names[failure]) << failure;
    }
    void failuresChangeNothing()
    {
        QFETCH(int, failure);
        BentScene scene;
        scene.select(scene.lShin);
        const RyRef<RyFacetMesh> mesh(scene.facetShape()->getFacetMesh());
        if (failure == 0)
            scene.select(scene.prop);
        if (failure == 0)
            ryScene()->addNode(scene.prop), scene.lFoot->removeNodeChild(scene.prop);
        if (failure == 1)
            scene.object->removeModifier(scene.skin);
        if (failure == 2)
            scene.figure->setObject(nullptr);
        if (failure == 3)
            scene.facetShape()->setFacetMesh(nullptr);
        if (failure == 4)
            scene.binding(scene.hip)->setWeights(ryMapOf(std::vector<quint16>(7, 65535)));
        if (failure == 5)
            scene.prop->addNodeChild(RyToolScene::makeBone(scene.lFoot, "far", {1, 2, 3}, {4, 5, 6}));
        const QString before = scene.dump();
        const int references = mesh->refCount();
        RyMessageBoxes boxes;
        RyJEBakeRotationsAction().executeAction();
        QCOMPARE(scene.dump(), before);
        QCOMPARE(boxes.said, QStringList());
        QCOMPARE(RyApp::busyCursorDepth(), 0);
        QCOMPARE(mesh->refCount(), references);
    }

    void figureAndBoneGiveTheSame()
    {
        QString dumps[2];
        for (const bool byBone : {false, true}) {
            BentScene scene;
            scene.select(byBone ? static_cast<RyNode *>(scene.lFoot) : scene.figure);
            RyJEBakeRotationsAction().executeAction();
            ryScene()->selectAllNodes(false);
            dumps[byBone] = scene.dump();
            QCOMPARE(scene.posed(), QStringList());
        }
        QCOMPARE(dumps[0], dumps[1]);
    }

    void leavesARestorePointAndNoStep()
    {
        BentScene scene;
        RyRestorePoints *points = ryRestorePoints();
        points->setMost(3);
        {
            RyUndoStackHold hold;
            scene.lShin->getXRotControl()->setValue(12);
            hold.accept(QStringLiteral("Pose"));
        }
        scene.select(scene.figure);
        const QString before = scene.dump();
        const std::vector<RyVec3> drawn = scene.shownInWorld();
        const RyRef<RyFacetMesh> mesh(scene.facetShape()->getFacetMesh());
        int busy = 0, placed = 0;
        const QObject context;
        connect(scene.facetShape(), &RyFacetShape::facetMeshChanged, &context,
                [&] { busy = std::max(busy, RyApp::busyCursorDepth()); });
        connect(scene.lShin, &RyNode::riggingChanged, &context, [&] { ++placed; });
        RyMessageBoxes boxes;
        RyJEBakeRotationsAction action;
        QVERIFY(action.isEnabled());
        action.trigger();
        QCOMPARE(busy, 1);
        QCOMPARE(placed, 1);
        QCOMPARE(RyApp::busyCursorDepth(), 0);
        QCOMPARE(boxes.said, QStringList());
        QCOMPARE(ryUndoStack()->count(), 1);
        QVERIFY(scene.facetShape()->getFacetMesh() != mesh.get());
        // Only the shape counts the new mesh.
        QCOMPARE(scene.facetShape()->getFacetMesh()->refCount(), 1);
        const QString after = scene.dump();
        QVERIFY(after != before);
        QCOMPARE(points->caption(0), QStringLiteral("Bake Joint Rotations"));
        QVERIFY(points->restore(0));
        QCOMPARE(scene.dump(), before);
        QVERIFY(scene.shownInWorld() == drawn);
        QVERIFY(!scene.lShin->isCarried());
        QVERIFY(points->restore(0));
        QCOMPARE(scene.dump(), after);
        points->clear();
        points->setMost(0);
    }
};

RY_TEST(BakePoseTest)
#include "tst_bakePose.moc"
