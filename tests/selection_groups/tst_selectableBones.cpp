#include "RyGroupedFigure.h"

#include "pluginsource/RyJointTools/pane/RyBindingToSelectionMapBuilder.h"

/// For whom the weights of bones count that cannot be selected.
class SelectableBonesTest : public QObject
{
    Q_OBJECT

    static QStringList pairsOf(const RyGroupedFigure &scene, bool respect = true)
    {
        RyBindingToSelectionMapBuilder builder;
        builder.setAllowRegrouping(false);
        builder.setMaintainExistingSelectionMappings(false);
        builder.setRespectBoneSelectable(respect);
        [&] { QCOMPARE(builder.buildSelectionMap(scene.figure).code(), 0); }();
        return scene.pairs();
    }

private slots:
    void theNextBoneAbove()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.hand, {0, 1, 2}, 70);
        scene.bindColumns(scene.root, {0, 1, 2, 3, 4, 5, 6}, 50);
        scene.bindColumns(scene.arm, {4, 5}, 1);
        scene.hand->setSelectable(false);
        QCOMPARE(pairsOf(scene), QStringList({"upper arm", "lower root"}));
        QCOMPARE(pairsOf(scene, false), QStringList({"upper hand", "lower root"}));
        scene.hand->setSelectable(true);
        QCOMPARE(pairsOf(scene), QStringList({"upper hand", "lower root"}));
    }

    /// 40 of the hand and 20 of the arm together are more than 50 of the leg.
    void weightsAreAddedToItsOwn()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.leg, {0, 1, 2}, 50);
        scene.bindColumns(scene.hand, {0, 1, 2}, 40);
        scene.bindColumns(scene.arm, {0, 1, 2}, 20);
        scene.hand->setSelectable(false);
        QCOMPARE(pairsOf(scene), QStringList({"upper arm"}));
        QCOMPARE(pairsOf(scene, false), QStringList({"upper leg"}));
        RyBindingToSelectionMapBuilder builder;
        builder.setMaintainExistingSelectionMappings(false);
        QCOMPARE(builder.buildSelectionMap(scene.figure).code(), 0);
        QCOMPARE(scene.groups(), QStringList({"upper:", "lower: 3 4 5", "nothing:", "arm: 0 1 2"}));
    }

    void overSeveralBones()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.hand, {0, 1, 2}, 60);
        scene.bindColumns(scene.arm, {}, 0);
        scene.bindColumns(scene.root, {}, 0);
        scene.hand->setSelectable(false);
        scene.arm->setSelectable(false);
        QCOMPARE(pairsOf(scene), QStringList({"upper root"}));
    }

    /// The way ends below the figure, whether or not a bone could be selected; the figure itself gets nothing.
    void theTopmostBone()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.leg, {0, 1, 2}, 60);
        scene.bindColumns(scene.root, {4, 5, 6}, 60);
        scene.leg->setSelectable(false);
        scene.root->setSelectable(false);
        QVERIFY(scene.figure->isSelectable());
        RyBindingToSelectionMapBuilder builder;
        builder.setAllowRegrouping(false);
        QCOMPARE(builder.buildSelectionMap(scene.figure).code(), 0);
        QCOMPARE(scene.pairs(), QStringList({"upper root"})); // which has a group then
        QCOMPARE(pairsOf(scene), QStringList({"upper root", "lower root"}));
    }

    /// The way ends at a selectable bone that nobody bound: further up one is bound, and gets nothing.
    void aBoneWithoutBinding()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.root, {4, 5, 6}, 60);
        scene.bindColumns(scene.hand, {0, 1, 2}, 60);
        scene.hand->setSelectable(false);
        QVERIFY(scene.arm->isSelectable());
        QCOMPARE(pairsOf(scene), QStringList({"upper hand", "lower root"}));
        // Past it, where it cannot be selected either.
        scene.arm->setSelectable(false);
        QCOMPARE(pairsOf(scene), QStringList({"upper root", "lower root"}));
    }

    void theTopmostBoneWithoutBinding()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.leg, {0, 1, 2}, 60);
        scene.leg->setSelectable(false);
        scene.root->setSelectable(false);
        QCOMPARE(pairsOf(scene), QStringList({"upper leg"}));
    }

    /// Bones of a branch, the deepest last: the way of the first is part of those of the others.
    void waysThatMeet()
    {
        RyGroupedFigure scene;
        RyBone *finger = scene.addBone(scene.hand, "finger");
        RyBone *thumb = scene.addBone(scene.hand, "thumb");
        scene.bindColumns(scene.hand, {}, 0);
        scene.bindColumns(finger, {0, 1, 2}, 5);
        scene.bindColumns(thumb, {5, 6}, 5);
        scene.bindColumns(scene.arm, {}, 0);
        for (RyBone *bone : {scene.hand, finger, thumb})
            bone->setSelectable(false);
        QCOMPARE(pairsOf(scene), QStringList({"upper arm", "lower arm"}));
        scene.hand->setSelectable(true);
        QCOMPARE(pairsOf(scene), QStringList({"upper hand", "lower hand"}));
    }

    /// What lies between may be another kind of node.
    void pastAProp()
    {
        RyGroupedFigure scene;
        auto *prop = new RyNode;
        prop->setName("socket");
        scene.arm->addNodeChild(prop);
        RyBone *tool = scene.addBone(prop, "tool");
        scene.bindColumns(tool, {0, 1, 2}, 5);
        scene.bindColumns(scene.arm, {}, 0);
        tool->setSelectable(false);
        QVERIFY(prop->isSelectable());
        QCOMPARE(pairsOf(scene), QStringList({"upper tool"}));
        prop->setSelectable(false);
        QCOMPARE(pairsOf(scene), QStringList({"upper arm"}));
    }

    /// A bone that hangs nowhere.
    void withoutParent()
    {
        RyGroupedFigure scene;
        const RyRef<RyBone> loose(new RyBone);
        loose->setName("loose");
        loose->setSelectable(false);
        scene.bindColumns(loose.get(), {0, 1, 2}, 5);
        QCOMPARE(pairsOf(scene), QStringList({"upper loose"}));
    }

    /// Equal weights: the place of the binding that they count for decides, not that of the bone they belong to.
    void tiesGoByTheStandIn()
    {
        RyGroupedFigure scene;
        scene.bindColumns(scene.hand, {0, 1, 2}, 60); // counts for the arm, which is third
        scene.bindColumns(scene.leg, {0, 1, 2}, 60);
        scene.bindColumns(scene.arm, {}, 0);
        scene.hand->setSelectable(false);
        QCOMPARE(pairsOf(scene), QStringList({"upper leg"}));
        QCOMPARE(pairsOf(scene, false), QStringList({"upper hand"}));
    }
};

RY_TEST(SelectableBonesTest)

#include "tst_selectableBones.moc"
