#include "RyGroupedFigure.h"

#include "pluginsource/RyJointTools/pane/RyBindingToSelectionMapBuilder.h"

#include <QSignalSpy>

/// Facets get into one group for each bone.
class RegroupFacetsTest : public QObject
{
    Q_OBJECT

    static QStringList groupsOf(const RyGroupedFigure &scene, bool maintain = true)
    {
        RyBindingToSelectionMapBuilder builder;
        builder.setMaintainExistingSelectionMappings(maintain);
        [&] { QCOMPARE(builder.buildSelectionMap(scene.figure).code(), 0); }();
        return scene.groups();
    }
    static void selectFacets(const RyGroupedFigure &scene, const std::vector<int> &facets)
    {
        RyIndexList list;
        for (const int facet : facets)
            list.append(facet);
        scene.mesh->selectFacetsByIndexList(list, true);
    }

private slots:
    /// Groups in the order of bindings, named by names and not by labels.
    void oneGroupForEachBone()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.leg, {5, 6}, 100);
        scene.bindColumns(scene.hand, {}, 0);
        scene.bindColumns(scene.arm, {0, 1, 2}, 100);
        QCOMPARE(groupsOf(scene), QStringList({"upper:", "lower: 3", "nothing:", "leg: 4 5 6", "arm: 0 1 2"}));
        QCOMPARE(scene.pairs(), QStringList({"leg leg", "arm arm"}));
    }

    /// Facet 3 has no corner with weights; facet 6, in no group, none either.
    void facetsWithoutInfluencesStay()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.arm, {0}, 9);
        scene.bindColumns(scene.leg, {5}, 9);
        QCOMPARE(groupsOf(scene), QStringList({"upper: 1 2", "lower: 3", "nothing:", "arm: 0", "leg: 4 5"}));
        QCOMPARE(scene.mesh->getFacet(6).group, -1);
    }

    void theFirstOfEqualOnes()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.hand, {0, 1, 2, 3, 4, 5, 6}, 300);
        scene.bindColumns(scene.arm, {0, 1, 2, 3, 4, 5, 6}, 300);
        std::vector<quint16> more(15, 0);
        more[2] = 1;
        scene.bind(scene.root, more);
        QCOMPARE(groupsOf(scene), QStringList({"upper:", "lower:", "nothing:", "hand: 0 1 2 3 4 5 6"}));
        QCOMPARE(scene.pairs(), QStringList({"hand hand"}));
    }

    /// A sum of three corners against one, and a lower binding that only some corners have.
    void cornersAreAddedUp()
    {
        RyGroupedFigure scene;
        scene.bind(scene.root, {40000});
        std::vector<quint16> others(15, 13334);
        others[0] = 0;
        scene.bind(scene.arm, others);
        QCOMPARE(groupsOf(scene).mid(3), QStringList({"arm: 0 1 2 3 4 5 6"}));
        RyGroupedFigure lighter;
        lighter.bind(lighter.root, {40000});
        others.assign(15, 13333);
        others[0] = 0;
        lighter.bind(lighter.arm, others);
        QCOMPARE(groupsOf(lighter).mid(3), QStringList({"root: 0", "arm: 1 2 3 4 5 6"}));
    }

    /// Weights that are not normalized: far over what 32 bits hold for a group, and still right for a facet.
    void heavyWeights()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.arm, {0, 1, 2, 3, 4, 5, 6}, 65534);
        scene.bindColumns(scene.leg, {0, 1, 2, 3, 4, 5, 6}, 65535);
        QCOMPARE(groupsOf(scene).mid(3), QStringList({"leg: 0 1 2 3 4 5 6"}));
    }

    void groupsWithAPairAreLeftAlone()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.arm, {0, 1, 2, 3, 4, 5, 6}, 100);
        scene.addPair("gone", nullptr);
        scene.addPair("lower", scene.leg);
        QCOMPARE(groupsOf(scene), QStringList({"upper:", "lower: 3 4 5", "nothing:", "arm: 0 1 2 6"}));
        QCOMPARE(scene.pairs(), QStringList({"gone -", "lower leg", "arm arm"}));
    }

    /// Its facets stay where they are.
    void bonesWithAPairAreLeftAlone()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.arm, {0, 1, 2}, 100);
        scene.bindColumns(scene.leg, {5, 6}, 100);
        scene.addPair("gone", scene.arm);
        QCOMPARE(groupsOf(scene), QStringList({"upper: 0 1 2", "lower: 3", "nothing:", "leg: 4 5 6"}));
        QCOMPARE(scene.pairs(), QStringList({"gone arm", "leg leg"}));
    }

    void withoutMaintainingAllPairsGo()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.arm, {0, 1, 2}, 100);
        scene.bindColumns(scene.leg, {5, 6}, 100);
        scene.addPair("lower", scene.hand);
        scene.addPair("gone", scene.arm);
        const RySelectionMap *map = scene.figure->getSelectionMap();
        QCOMPARE(groupsOf(scene, false), QStringList({"upper:", "lower: 3", "nothing:", "arm: 0 1 2", "leg: 4 5 6"}));
        QCOMPARE(scene.pairs(), QStringList({"arm arm", "leg leg"}));
        QCOMPARE(scene.figure->getSelectionMap(), map);
    }

    /// The group is there: facets join those that are in it. It has a pair: that one stays, though others join.
    void groupsWithTheNameOfABone()
    {
        RyGroupedFigure scene;
        scene.mesh->createFaceGroup("arm");
        scene.mesh->createFaceGroup("leg");
        scene.mesh->setGroupsOfFacets({0, 0, 0, 3, 1, 1, 4});
        scene.bindColumns(scene.arm, {0, 1}, 100);
        scene.bindColumns(scene.leg, {5}, 100);
        scene.addPair("leg", scene.hand);
        QCOMPARE(groupsOf(scene), QStringList({"upper: 2", "lower:", "nothing:", "arm: 0 1 3", "leg: 4 5 6"}));
        QCOMPARE(scene.pairs(), QStringList({"leg hand", "arm arm"}));
    }

    /// The first binding takes the bone; with it paired the second one is left out, unless pairs are not looked at.
    void twoBindingsOfOneBone()
    {
        for (const bool maintain : {true, false}) {
            RyGroupedFigure scene;
            scene.bindColumns(scene.arm, {0, 1}, 100);
            scene.bindColumns(scene.arm, {5}, 100);
            RyBindingToSelectionMapBuilder builder;
            builder.setRespectBoneSelectable(false);
            builder.setMaintainExistingSelectionMappings(maintain);
            QCOMPARE(builder.buildSelectionMap(scene.figure).code(), 0);
            QCOMPARE(scene.groups(), maintain ? QStringList({"upper: 2", "lower: 3 4 5", "nothing:", "arm: 0 1"})
                                              : QStringList({"upper: 2", "lower: 3", "nothing:", "arm: 0 1 4 5"}));
            QCOMPARE(scene.pairs(), QStringList({"arm arm"}));
        }
    }

    void aBindingWithoutABone()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.hand, {0, 1}, 40000);
        scene.bindColumns(scene.arm, {0, 1, 2}, 10);
        scene.arm->removeNodeChild(scene.hand);
        delete scene.hand;
        QCOMPARE(groupsOf(scene), QStringList({"upper: 0 1", "lower: 3 4 5", "nothing:", "arm: 2"}));
        QCOMPARE(scene.pairs(), QStringList({"arm arm"}));
    }

    /// The map of a bone that has no general one is the mean of its local ones.
    void localMapsAreAveraged()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.leg, {0, 1, 2, 3, 4, 5, 6}, 1000);
        auto *binding = new RyBoneBinding;
        binding->setBone(scene.arm);
        std::vector<quint16> weights(15, 0);
        weights[0] = weights[7] = 9000; // mean 3000 at the first two columns, 990 at the others
        weights[1] = weights[8] = 9000;
        for (size_t v : {2, 3, 4, 5, 6, 9, 10, 11, 12, 13})
            weights[v] = 2970;
        binding->setLocalWeights(ryMapOf(weights), 1);
        scene.skin->addBoneBinding(binding);
        QCOMPARE(groupsOf(scene).mid(3), QStringList({"leg: 2 3 4 5 6", "arm: 0 1"}));
    }

    /// A map for more vertices than there are: what is beyond counts for nobody.
    void weightsBeyondTheMesh()
    {
        for (const bool regroup : {true, false}) {
            RyGroupedFigure scene;
            std::vector<quint16> weights(100000, 65535);
            std::fill(weights.begin(), weights.begin() + 12, quint16(0));
            scene.bind(scene.leg, weights);
            scene.bindColumns(scene.arm, {0, 1, 2, 3}, 10);
            RyBindingToSelectionMapBuilder builder;
            builder.setAllowRegrouping(regroup);
            QCOMPARE(builder.buildSelectionMap(scene.figure).code(), 0);
            QCOMPARE(scene.pairs(),
                     regroup ? QStringList({"leg leg", "arm arm"}) : QStringList({"upper arm", "lower leg"}));
        }
    }

    /// A map for fewer vertices than there are.
    void weightsForSomeOfTheMesh()
    {
        RyGroupedFigure scene;
        auto *binding = new RyBoneBinding;
        binding->setBone(scene.leg);
        binding->setWeights(ryMapOf({0, 7, 7}));
        scene.skin->addBoneBinding(binding);
        QCOMPARE(groupsOf(scene), QStringList({"upper:", "lower: 3 4 5", "nothing:", "leg: 0 1 2"}));
    }

    /// Facets with vertices that the mesh does not have weigh by the others.
    void verticesThatThereAreNot()
    {
        for (const bool regroup : {true, false}) {
            RyGroupedFigure scene;
            scene.bindColumns(scene.leg, {0, 1, 2, 3, 4, 5, 6}, 100);
            std::vector<RyFacet> facets = scene.mesh->getFacets();
            facets[0] = {{15, 1000000, -5, 2}, -1};
            facets[1] = {{15, 1000000, -5, 2147483647}, -1};
            scene.mesh->setFacets(facets);
            scene.mesh->setGroupsOfFacets({0, 1, 2, 2, 2, 2, 2});
            RyBindingToSelectionMapBuilder builder;
            builder.setAllowRegrouping(regroup);
            builder.setMaintainExistingSelectionMappings(false);
            QCOMPARE(builder.buildSelectionMap(scene.figure).code(), 0);
            QCOMPARE(scene.pairs(), regroup ? QStringList({"leg leg"}) : QStringList({"upper leg", "nothing leg"}));
            QCOMPARE(scene.mesh->getFacet(1).group, 1);
        }
    }

    /// Whoever listens hears of the facets' groups once, beside what he hears of each new group.
    void facetsMoveAtOnce()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.arm, {0, 1, 2}, 100);
        scene.bindColumns(scene.leg, {5, 6}, 100);
        const QSignalSpy changes(scene.mesh, &RyFacetMesh::faceGroupsChanged);
        groupsOf(scene);
        QCOMPARE(changes.count(), 3);
    }

    void noFacetIsSelectedAfterwards()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.arm, {0}, 100);
        selectFacets(scene, {0, 3, 6});
        groupsOf(scene);
        for (int i = 0; i < 7; ++i)
            QVERIFY(!scene.mesh->isFacetSelected(i));
        // A second time nobody gets anything.
        selectFacets(scene, {0, 3, 6});
        groupsOf(scene);
        for (int i = 0; i < 7; ++i)
            QCOMPARE(scene.mesh->isFacetSelected(i), i % 3 == 0);
    }
};

RY_TEST(RegroupFacetsTest)

#include "tst_regroupFacets.moc"
