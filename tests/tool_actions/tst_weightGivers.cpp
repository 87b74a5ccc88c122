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
        QCOMPARE(bone->getWeightGivers(), std::vector<quint64>{scene.lShin->getSerial()});
        QVERIFY(scene.lShin->getWeightGivers().empty());
        const RyRef<RyBone> guard(bone);
        ryUndoStack()->undo();
        QVERIFY(bone->getWeightGivers().empty());
        ryUndoStack()->redo();
        QCOMPARE(bone->getWeightGivers(), std::vector<quint64>{scene.lShin->getSerial()});
        const RyBone *further = isSplit ? createSiblingBone(bone) : splitBone(bone);
        QCOMPARE(further->getWeightGivers(), (std::vector<quint64>{bone->getSerial(), scene.lShin->getSerial()}));
    }

    void nothingWasGiven_data() { creations(); }
    void nothingWasGiven()
    {
        QFETCH(bool, isSplit);
        RySkinnedScene scene;
        for (RyWeightMap *map : scene.binding(scene.rThigh)->getAllWeightMaps())
            map->setAffected(map->getNumWeights(), {}, {});
        RyBone *bone = isSplit ? splitBone(scene.rThigh) : createSiblingBone(scene.rThigh);
        QVERIFY(bone && bone->getWeightGivers().empty());
    }

    void childrenHaveNone()
    {
        RySkinnedScene scene;
        const QString name = QStringLiteral("child");
        const RyBone *child = createChildBone(scene.lShin, name, name, RyRotationOrder(0));
        QVERIFY(child && child->getWeightGivers().empty());
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
