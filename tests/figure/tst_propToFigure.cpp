#include "FigureScene.h"
#include "addProp.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyNear.h"
#include "support/RyTest.h"
#include "support/checkUndo.h"

namespace {

constexpr float Tolerance = 1e-4f;

/// The object's deformed points in the world.
std::vector<RyVec3> shown(RyNode *node)
{
    std::vector<RyVec3> points = node->getObject()->getDeformedPositions();
    for (RyVec3 &point : points)
        point = node->worldMap().mapPoint(point);
    return points;
}

bool areNear(const std::vector<RyVec3> &a, const std::vector<RyVec3> &b)
{
    if (a.size() != b.size())
        return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (!ryIsNear(a[i], b[i], Tolerance))
            return false;
    }
    return true;
}

RyNode *makeProp(RyNode *parent, int vertices = 3)
{
    auto *mesh = new RyFacetMesh;
    std::vector<RyVec3> positions;
    for (int i = 0; i < vertices; ++i)
        positions.push_back({float(i % 3), float(i % 7) + 1, float(i % 5)});
    mesh->setPositions(positions);
    RyNode *prop = addProp(QStringLiteral("box"), mesh, parent);
    prop->setLabel(QStringLiteral("A Box"));
    return prop;
}

} // namespace

class PropToFigureTest : public QObject
{
    Q_OBJECT

private slots:
    void becomesAFigureWithOneBone_data()
    {
        QTest::addColumn<bool>("local");
        QTest::newRow("local maps") << true;
        QTest::newRow("general map") << false;
    }
    void becomesAFigureWithOneBone()
    {
        QFETCH(bool, local);
        FigureScene scene;
        auto *group = new RyNode;
        group->setName(QStringLiteral("group"));
        ryScene()->addNode(group);
        RyNode *prop = makeProp(group);
        RyNode *after = makeProp(group);
        auto *child = new RyNode;
        child->setName(QStringLiteral("hung on"));
        child->getYTransControl()->setValue(5);
        prop->addNodeChild(child);
        ryScene()->addNode(child);
        RyNode *other = makeProp(nullptr);
        RyERCLink::create(other->getXRotControl(), prop->getXRotControl());
        RyERCLink::create(prop->getYRotControl(), other->getYRotControl());
        ryScene()->setSelection({prop, scene.figure});
        RyObject *object = prop->getObject();
        const std::vector<RyVec3> before = shown(prop);
        const RyVec3 childPlace = child->getWSPos();
        const QString dump = rySceneDump(*ryScene());

        RyFigure *figure = RyFigure::convertPropToFigure(prop, QStringLiteral("hip"), local, true);
        QVERIFY(figure && figure->getScene() == ryScene() && !prop->getScene());
        QCOMPARE(figure->getName(), QString("box"));
        QCOMPARE(figure->getLabel(), QString("A Box"));
        QCOMPARE(group->getNumNodeChildren(), 2);
        QVERIFY(group->getNodeChild(0) == figure && group->getNodeChild(1) == after);
        const std::vector<RyBone *> bones = figure->getAllBones();
        QCOMPARE(int(bones.size()), 1);
        RyBone *root = bones[0];
        QCOMPARE(root->getName(), QString("hip"));
        QCOMPARE(root->getScene(), ryScene());
        QVERIFY(root->getEndPoint() != root->getOrigin());
        // The bone lies along its first axis.
        const int axis = root->getRotationOrder()[0];
        RyVec3 along;
        along[axis] = 1;
        QVERIFY(ryIsNear(root->getOrientation().multVec(along), (root->getEndPoint() - root->getOrigin()).normalized(),
                         Tolerance));
        QCOMPARE(figure->getObject(), object);
        const RySkinBinding *skin = figure->getSkinBinding();
        QVERIFY(skin && skin->getNumBoneBindings() == 1);
        QCOMPARE(skin->hasLocalMaps(), local);
        QCOMPARE(skin->hasGeneralMaps(), !local);
        const std::vector<RyWeightMap *> maps = skin->findBoneBinding(root)->getAllWeightMaps();
        QCOMPARE(int(maps.size()), local ? 4 : 1);
        for (const RyWeightMap *map : maps) {
            QCOMPARE(map->getNumAffected(), 3);
            for (int i = 0; i < 3; ++i)
                QCOMPARE(map->getWeight(i), quint16(65535));
        }
        QVERIFY(areNear(shown(figure), before));
        QCOMPARE(child->getNodeParent(), static_cast<RyNode *>(root));
        QVERIFY(ryIsNear(child->getWSPos(), childPlace, Tolerance));
        QCOMPARE(figure->getXRotControl()->getControllerLinks()[0]->getController(), other->getXRotControl());
        QCOMPARE(other->getYRotControl()->getControllerLinks()[0]->getController(), figure->getYRotControl());
        QVERIFY((ryScene()->selectedNodeListIterator() == std::vector<RyNode *>{figure, scene.figure}));

        QCOMPARE(ryUndoStack()->count(), 1);
        QCOMPARE(ryUndoStack()->caption(0), QString("Convert Prop to Figure"));
        const QString converted = rySceneDump(*ryScene());
        for (int round = 0; round < 2; ++round) {
            ryUndoStack()->undo();
            QCOMPARE(rySceneDump(*ryScene()), dump);
            QVERIFY(areNear(shown(prop), before));
            ryUndoStack()->redo();
            QCOMPARE(rySceneDump(*ryScene()), converted);
            QVERIFY(areNear(shown(figure), before));
        }
        // The bone moves the geometry.
        root->getYTransControl()->setValue(10);
        QVERIFY(!areNear(shown(figure), before));
    }

    void inheritingBoneJoinsTheSkeleton()
    {
        FigureScene scene;
        RyBone *hip = scene.addBone("hip", scene.figure, 65535);
        RyBone *hand = scene.addBone("hand", hip, 0);
        hand->setOrigin({1, 2, 3}, true);
        hand->getXRotControl()->setValue(30);
        scene.figure->getYTransControl()->setValue(7);
        RyNode *prop = makeProp(hand);
        scene.figure->getSelectionMap()->addPair("ring", prop, true);
        prop->select(true);
        const std::vector<RyVec3> before = shown(prop);
        const QString dump = rySceneDump(*ryScene());

        RyFigure *figure = RyFigure::convertPropToFigure(prop, QStringLiteral("hip"), false, true);
        QVERIFY(figure && figure != scene.figure);
        QCOMPARE(scene.boneNames(), (QStringList{"hip", "hand", "hip2"}));
        RyBone *bone = scene.figure->findBone("hip2");
        QCOMPARE(bone->getNodeParent(), static_cast<RyNode *>(hand));
        QCOMPARE(figure->getNodeParent(), static_cast<RyNode *>(scene.figure));
        QCOMPARE(figure->getFollowTarget(), static_cast<RySkeleton *>(scene.figure));
        QVERIFY(figure->getSkinBinding()->findBoneBinding(bone));
        QCOMPARE(scene.figure->getSelectionMap()->findGroupForNode(bone), QString("ring"));
        QVERIFY(areNear(shown(figure), before));
        checkLastStep(dump);

        // It follows the hand as the prop did.
        const RyVec3 old = shown(figure)[1];
        hand->getXRotControl()->setValue(90);
        QVERIFY(!ryIsNear(shown(figure)[1], old, Tolerance));
        const std::vector<RyVec3> moved = shown(figure);
        ryUndoStack()->undo();
        QVERIFY(areNear(shown(prop), moved));
    }

    void withoutInheritingTheFigureHangsWhereThePropWas()
    {
        FigureScene scene;
        RyBone *hand = scene.addBone("hand", scene.figure, 0);
        RyNode *prop = makeProp(hand);
        const std::vector<RyVec3> before = shown(prop);
        RyFigure *figure = RyFigure::convertPropToFigure(prop, QString(), true, false);
        QCOMPARE(figure->getNodeParent(), static_cast<RyNode *>(hand));
        QCOMPARE(figure->getAllBones()[0]->getName(), QString("Bone"));
        QCOMPARE(figure->getAllBones()[0]->getSkeleton(), static_cast<RySkeleton *>(figure));
        QVERIFY(areNear(shown(figure), before));
    }

    void refusesWhatIsNoProp()
    {
        FigureScene scene;
        RyBone *bone = scene.addBone("bone", scene.figure, 1);
        bone->setObject(new RyObject);
        RyNode *bare = new RyNode;
        ryScene()->addNode(bare);
        RyNode *empty = makeProp(nullptr, 0);
        // Nobody would hold the figure.
        const RyRef<RyNode> loose(makeProp(nullptr));
        ryScene()->removeNode(loose.get());
        const QString dump = rySceneDump(*ryScene());
        for (RyNode *node : std::vector<RyNode *>{nullptr, scene.figure, bone, bare, empty, loose.get()})
            QVERIFY(!RyFigure::convertPropToFigure(node, QStringLiteral("hip"), true, true));
        QCOMPARE(rySceneDump(*ryScene()), dump);
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    void joinsAnOuterStep()
    {
        FigureScene scene;
        RyNode *prop = makeProp(nullptr);
        const QString dump = rySceneDump(*ryScene());
        RyUndoStackHold hold;
        QVERIFY(RyFigure::convertPropToFigure(prop, QStringLiteral("hip"), true, false));
        hold.cancel();
        QCOMPARE(rySceneDump(*ryScene()), dump);
        QCOMPARE(ryUndoStack()->count(), 0);
    }
};

RY_TEST(PropToFigureTest)
#include "tst_propToFigure.moc"
