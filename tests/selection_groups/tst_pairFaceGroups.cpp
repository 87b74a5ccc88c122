#include "RyGroupedFigure.h"
#include "RySelectionState.h"

#include "pluginsource/RyJointTools/pane/RyBindingToSelectionMapBuilder.h"

/// Groups that there are get bones.
class PairFaceGroupsTest : public QObject
{
    Q_OBJECT

    static QStringList pairsOf(const RyGroupedFigure &scene, bool maintain = true)
    {
        RyBindingToSelectionMapBuilder builder;
        builder.setAllowRegrouping(false);
        builder.setMaintainExistingSelectionMappings(maintain);
        const QStringList groups = scene.groups();
        [&] { QCOMPARE(builder.buildSelectionMap(scene.figure).code(), 0); }();
        [&] { QCOMPARE(scene.groups(), groups); }();
        return scene.pairs();
    }

private slots:
    void theHeaviestBone()
    {
        RyGroupedFigure scene;
        QVERIFY(!scene.figure->getSelectionMap());
        scene.bindColumns(scene.root, {0, 1, 2, 3}, 20000);
        scene.bindColumns(scene.arm, {0, 1, 2, 3}, 45535);
        scene.bindColumns(scene.leg, {4, 5, 6}, 30000);
        QCOMPARE(pairsOf(scene), QStringList({"upper arm", "lower leg"}));
    }

    /// A vertex in the middle of a group is a corner of two of its facets, one at the border of one.
    void aVertexCountsOncePerFacet()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.root, {0}, 30000);
        scene.bindColumns(scene.arm, {1}, 15001); // 2 * 15001 > 30000
        scene.bindColumns(scene.hand, {5}, 14999);
        scene.bindColumns(scene.leg, {6}, 30000); // 2 * 14999 < 30000
        QCOMPARE(pairsOf(scene), QStringList({"upper arm", "lower leg"}));
    }

    void trianglesHaveThreeCorners()
    {
        RyGroupedFigure scene;
        scene.mesh->createFaceGroup("tip");
        scene.mesh->setGroupsOfFacets({0, 0, 0, 1, 1, 1, 3});
        scene.bind(scene.leg, {0, 0, 0, 0, 0, 0, 500});
        std::vector<quint16> third(15, 0);
        third[14] = 501;
        scene.bind(scene.hand, third);
        QCOMPARE(pairsOf(scene), QStringList({"lower leg", "tip hand"}));
    }

    void theFirstOfEqualOnes()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.leg, {4, 5, 6}, 7000);
        scene.bindColumns(scene.hand, {0, 1, 2, 3}, 7000);
        scene.bindColumns(scene.arm, {0, 1, 2, 3}, 7000);
        scene.bindColumns(scene.root, {4, 5, 6}, 7000);
        QCOMPARE(pairsOf(scene), QStringList({"upper hand", "lower leg"}));
    }

    void emptyGroupsAndThoseWithoutWeights()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.leg, {5, 6}, 1);
        QCOMPARE(pairsOf(scene), QStringList({"lower leg"}));
    }

    /// What another group has weighed most for is not given away twice.
    void oneGroupForABone()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.root, {0, 1, 2, 3, 4, 5, 6}, 5);
        scene.bindColumns(scene.arm, {0, 1, 2, 3, 4, 5, 6}, 40000);
        QCOMPARE(pairsOf(scene), QStringList({"upper arm", "lower root"}));
    }

    void withoutMaintainingABoneGetsSeveral()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.root, {0, 1, 2, 3, 4, 5, 6}, 5);
        scene.bindColumns(scene.arm, {0, 1, 2, 3, 4, 5, 6}, 40000);
        scene.addPair("upper", scene.leg);
        scene.addPair("gone", scene.hand);
        const RySelectionMap *map = scene.figure->getSelectionMap();
        QCOMPARE(pairsOf(scene, false), QStringList({"upper arm", "lower arm"}));
        QCOMPARE(scene.figure->getSelectionMap(), map);
    }

    void pairsThatThereAreStay()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.root, {0, 1, 2, 3, 4, 5, 6}, 5);
        scene.bindColumns(scene.arm, {0, 1, 2, 3, 4, 5, 6}, 40000);
        scene.addPair("gone", scene.arm);
        scene.addPair("upper", nullptr);
        QCOMPARE(pairsOf(scene), QStringList({"gone arm", "upper -", "lower root"}));
    }

    void allArePaired()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.arm, {0, 1, 2, 3, 4, 5, 6}, 40000);
        for (const char *group : {"lower", "nothing", "upper"})
            scene.addPair(group, scene.leg);
        const QString before = scene.dump();
        const QStringList pairs = scene.pairs();
        QCOMPARE(pairsOf(scene), pairs);
        QCOMPARE(scene.dump(), before);
    }

    /// All bones that weigh on a group have another one.
    void noBoneIsLeft()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.arm, {0, 1, 2, 3, 4, 5, 6}, 40000);
        scene.bindColumns(scene.root, {0}, 1);
        scene.addPair("gone", scene.root);
        QCOMPARE(pairsOf(scene), QStringList({"gone root", "upper arm"}));
    }

    /// A bone that was deleted leaves a binding that may still weigh most: its group gets nobody.
    void aBindingWithoutABone()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.hand, {0, 1, 2}, 40000);
        scene.bindColumns(scene.arm, {0, 1, 2}, 10);
        scene.bindColumns(scene.leg, {4, 5, 6}, 10);
        scene.arm->removeNodeChild(scene.hand);
        delete scene.hand;
        QVERIFY(!scene.skin->bindings().front()->getBone());
        QCOMPARE(pairsOf(scene), QStringList({"lower leg"}));
        QCOMPARE(pairsOf(scene, false), QStringList({"lower leg"}));
    }

    void facetsThatThereAreNot()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.root, {0, 1}, 100);
        scene.bindColumns(scene.arm, {2, 3}, 150);
        RyIndexList &upper = scene.mesh->findFaceGroup("upper")->facets();
        upper.clear();
        for (const int facet : {-2000000000, -1, 0, 7, 2000000000})
            upper.append(facet);
        RyIndexList &lower = scene.mesh->findFaceGroup("lower")->facets();
        lower.clear();
        lower.append(7);
        QCOMPARE(pairsOf(scene), QStringList({"upper root"}));
    }

    /// A facet that is in two lists counts in both.
    void sharedFacets()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.root, {0, 1}, 100);
        scene.bindColumns(scene.leg, {5, 6}, 90);
        RyIndexList &lower = scene.mesh->findFaceGroup("lower")->facets();
        lower.clear();
        for (const int facet : {0, 5})
            lower.append(facet);
        QCOMPARE(pairsOf(scene, false), QStringList({"upper root", "lower root"}));
    }

    /// Neither the facets' selection is touched.
    void selectedFacetsStaySelected()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.arm, {0, 1, 2, 3, 4, 5, 6}, 40000);
        RyIndexList two;
        two.append(2);
        two.append(6);
        scene.mesh->selectFacetsByIndexList(two, true);
        pairsOf(scene);
        for (int i = 0; i < 7; ++i)
            QCOMPARE(scene.mesh->isFacetSelected(i), i == 2 || i == 6);
    }
};

RY_TEST(PairFaceGroupsTest)

#include "tst_pairFaceGroups.moc"
