#include "support/RyTest.h"

#include "ParametricScene.h"
#include "paramTexts.h"

#include "figure/addProp.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "support/RyNear.h"
#include "support/checkUndo.h"

namespace {

/// A quad of its own, in as many face groups.
RyNode *makeProp(RyNode *parent, const QStringList &groups)
{
    auto *mesh = new RyFacetMesh;
    mesh->setPositions({{1, 2, 3}, {5, 2, 3}, {5, 9, 4}, {1, 9, 4}});
    mesh->setFacets({{{0, 1, 2, 3}, -1}});
    for (const QString &group : groups)
        mesh->createFaceGroup(group);
    if (!groups.isEmpty())
        mesh->setGroupsOfFacets({0});
    RyNode *prop = addProp(QStringLiteral("ring"), mesh, parent);
    ryUndoStack()->clearAll();
    return prop;
}

QString wholeDump()
{
    return rySceneDump(*ryScene());
}

} // namespace

/// Props become parametric figures.
class PropToLegacyFigureTest : public QObject
{
    Q_OBJECT

private slots:
    void becomesAFigureWithOneBone_data()
    {
        QTest::addColumn<QStringList>("groups");
        QTest::addColumn<bool>("isPaired");
        QTest::newRow("no group") << QStringList() << false;
        QTest::newRow("one group") << QStringList("gold") << true;
        QTest::newRow("two groups") << QStringList({"gold", "stone"}) << false;
    }
    void becomesAFigureWithOneBone()
    {
        QFETCH(QStringList, groups);
        QFETCH(bool, isPaired);
        const ParametricScene scene;
        RyNode *prop = makeProp(nullptr, groups);
        RyObject *object = prop->getObject();
        const RyAffine place = prop->worldMap();
        const QString before = wholeDump();
        RyLegacyFigure *figure = RyLegacyFigure::convertPropToFigure(prop, QStringLiteral("hip"), false);
        QVERIFY(figure && figure->getObject() == object && figure->getScene() == ryScene());
        QCOMPARE(figure->getName(), QStringLiteral("ring"));
        QVERIFY(ryIsNear(figure->worldMap().mapPoint({5, 9, 4}), place.mapPoint({5, 9, 4}), 1e-4f));
        const std::vector<RyBone *> bones = figure->getAllBones();
        QCOMPARE(int(bones.size()), 1);
        QCOMPARE(bones[0]->getName(), QStringLiteral("hip"));
        QCOMPARE(figure->getSelectionMap()->findGroupForNode(bones[0]), isPaired ? QStringLiteral("gold") : QString());
        const RyLegacyBinding *binding = RyLegacyBinding::findBinding(figure);
        QVERIFY(binding && binding->joints().size() == 1);
        const RyLegacyJoint *joint = RyLegacyJoint::findJoint(bones[0]);
        QCOMPARE(joint->getName(), QStringLiteral("hip"));
        QCOMPARE(legacyParamsOf(joint), QStringList({"twisty Y hip", "jointx X hip", "jointz Z hip"}));
        for (const RyLegacyJointParam *param : joint->params()) {
            QCOMPARE(param->flags(), 0u); // the angles do not count either
            const RyVec3 center = isPaired ? RyVec3(3, 5.5f, 3.5f) : bones[0]->getOrigin();
            const float length = (bones[0]->getEndPoint() - bones[0]->getOrigin()).length();
            const float size = isPaired ? RyVec3(4, 7, 1).length() : length;
            QVERIFY(ryIsNear(param->getDynamicMatrix().translation(), center, 1e-4f));
            QVERIFY(std::abs(param->getStaticMatrix()[1][1] - size / 2) < 1e-3f);
        }
        QCOMPARE(bones[0]->getZRotControl()->getLabel(), QStringLiteral("ZRot"));
        QCOMPARE(ryUndoStack()->count(), 1);
        QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Convert Prop to Figure"));
        const QString after = wholeDump();
        for (int round = 0; round < 2; ++round) {
            ryUndoStack()->undo();
            QCOMPARE(wholeDump(), before);
            QVERIFY(object->getModifiers().empty());
            ryUndoStack()->redo();
            QCOMPARE(wholeDump(), after);
        }
    }

    void rootPointsAlongThePropsOwnBone()
    {
        const ParametricScene scene;
        RyNode *prop = makeProp(nullptr, {});
        prop->setOrigin({0, 50, 0}, true);
        prop->setEndPoint({0, 20, 0}, true);
        prop->setRotationOrder(RyRotationOrder(RyRotationOrder::YZX));
        const RyLegacyFigure *figure = RyLegacyFigure::convertPropToFigure(prop, QString(), true);
        const RyBone *root = figure->getAllBones()[0];
        QCOMPARE(root->getName(), QStringLiteral("Bone"));
        // Downwards, although the end point has a positive coordinate.
        const auto *bend = dynamic_cast<const RyLegacyBendParam *>(RyLegacyJoint::findJoint(root)->params()[1]);
        QVERIFY(bend);
        QCOMPARE(bend->getDynamicAngleBController()->getValue(), -45.0f);
    }

    void inheritingBoneJoinsAParametricSkeleton()
    {
        ParametricScene scene;
        scene.makeUntidy();
        scene.makeJoints();
        RyNode *prop = makeProp(scene.lHand, {"gold"});
        const RyAffine place = prop->worldMap();
        const QString before = wholeDump();
        RyLegacyFigure *figure = RyLegacyFigure::convertPropToFigure(prop, QStringLiteral("lTip"), true);
        QVERIFY(figure && figure->getAllBones().empty());
        const RyBone *bone = scene.figure->findBone(QStringLiteral("lTip2"));
        QVERIFY(bone && bone->getNodeParent() == scene.lHand);
        QCOMPARE(figure->getFollowTarget(), static_cast<RySkeleton *>(scene.figure));
        const RyLegacyBinding *binding = RyLegacyBinding::findBinding(figure);
        QVERIFY(binding && binding->findJoint(bone));
        QVERIFY(!scene.binding->findJoint(bone));
        QCOMPARE(int(binding->findJoint(bone)->params().size()), 3);
        QCOMPARE(figure->getSelectionMap()->findGroupForNode(bone), QStringLiteral("gold"));
        QVERIFY(ryIsNear(bone->worldMap().mapPoint({5, 9, 4}), place.mapPoint({5, 9, 4}), 1e-3f));
        checkLastStep(before);
    }

    void mayNotJoinAWeightMappedSkeleton()
    {
        const ParametricScene scene;
        auto *outer = new RyFigure;
        ryScene()->addNode(outer);
        RyNode *prop = makeProp(outer, {});
        const QString before = wholeDump();
        QVERIFY(!RyLegacyFigure::mayJoinOuterSkeleton(prop));
        QVERIFY(!RyLegacyFigure::convertPropToFigure(prop, QStringLiteral("hip"), true));
        QCOMPARE(wholeDump(), before);
        QCOMPARE(ryUndoStack()->count(), 0);
        const RyLegacyFigure *figure = RyLegacyFigure::convertPropToFigure(prop, QStringLiteral("hip"), false);
        QVERIFY(figure && figure->getNodeParent() == outer);
    }

    void refusesWhatIsNoProp()
    {
        ParametricScene scene;
        scene.makeJoints();
        auto *bare = new RyNode;
        ryScene()->addNode(bare);
        const QString before = wholeDump();
        for (RyNode *node : std::vector<RyNode *>{nullptr, scene.figure, scene.lArm, bare})
            QVERIFY(!RyLegacyFigure::convertPropToFigure(node, QStringLiteral("hip"), false));
        QCOMPARE(wholeDump(), before);
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    void becomesAPropAgain()
    {
        ParametricScene scene;
        scene.makeUntidy();
        scene.makeJoints();
        auto *ring = new RyNode;
        ring->setName(QStringLiteral("ring"));
        scene.lHand->addNodeChild(ring);
        ryScene()->addNode(ring);
        ryUndoStack()->clearAll();
        const QString before = wholeDump();
        RyObject *object = scene.figure->getObject();
        const RyVec3 ringPlace = ring->getWSPos();
        const RyNode *prop = RySkeleton::convertFigureToProp(scene.figure, scene.figure->getName());
        QVERIFY(prop && prop->getObject() == object && object->getModifiers().empty());
        QVERIFY(ryIsNear(ring->getWSPos(), ringPlace, 1e-3f));
        QVERIFY(!ryScene()->findNode(QStringLiteral("lHand")));
        const QString after = wholeDump();
        ryUndoStack()->undo();
        QCOMPARE(wholeDump(), before);
        QCOMPARE(RyLegacyJoint::findJoint(scene.lHand)->getBone(), scene.lHand);
        ryUndoStack()->redo();
        QCOMPARE(wholeDump(), after);
    }
};

RY_TEST(PropToLegacyFigureTest)
#include "tst_propToLegacyFigure.moc"
