#include "support/RyTest.h"

#include "RySkinnedScene.h"

#include "pluginsource/RyJointTools/operations/createChildBone.h"
#include "pluginsource/RyJointTools/operations/createSiblingBone.h"
#include "pluginsource/RyJointTools/operations/splitBone.h"
#include "rycore/undo/RyUndoStackHold.h"

/// New bones know whose weights they have: clips of files know only that one, and move both alike.
class RyWeightGiversTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }

    void giversAreKnown_data() { creations(); }
    void giversAreKnown()
    {
        QFETCH(bool, isSplit);
        RySkinnedScene scene;
        RyUndoStackHold hold;
        RyBone *bone = isSplit ? splitBone(scene.lShin) : createSiblingBone(scene.lShin);
        hold.accept(QStringLiteral("Make"));
        QVERIFY(bone);
        QCOMPARE(bone->getWeightGiver(), scene.lShin);
        QVERIFY(!scene.lShin->getWeightGiver());
        const RyRef<RyBone> guard(bone);
        ryUndoStack()->undo();
        QVERIFY(!bone->getWeightGiver());
        ryUndoStack()->redo();
        QCOMPARE(bone->getWeightGiver(), scene.lShin);
        QCOMPARE((isSplit ? createSiblingBone(bone) : splitBone(bone))->getWeightGiver(), bone);
    }

    void nothingWasGiven_data() { creations(); }
    void nothingWasGiven()
    {
        QFETCH(bool, isSplit);
        RySkinnedScene scene;
        for (RyWeightMap *map : scene.binding(scene.rThigh)->getAllWeightMaps())
            map->setAffected(map->getNumWeights(), {}, {});
        RyBone *bone = isSplit ? splitBone(scene.rThigh) : createSiblingBone(scene.rThigh);
        QVERIFY(bone && !bone->getWeightGiver());
    }

    void childrenHaveNone()
    {
        RySkinnedScene scene;
        const QString name = QStringLiteral("child");
        const RyBone *child = createChildBone(scene.lShin, name, name, RyRotationOrder(0));
        QVERIFY(child && !child->getWeightGiver());
    }

private:
    static void creations()
    {
        QTest::addColumn<bool>("isSplit");
        QTest::newRow("sibling") << false;
        QTest::newRow("split") << true;
    }
};

RY_TEST(RyWeightGiversTest)
#include "tst_weightGivers.moc"
