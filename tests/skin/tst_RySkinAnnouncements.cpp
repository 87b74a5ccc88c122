#include "skin/SkinFixture.h"

#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QSignalSpy>

/// What a skin tells of edits of its bindings and maps, up to the scene.
class RySkinAnnouncementsTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { ryUndoStack()->clearAll(); }

    void weightEditsReachTheScene()
    {
        SkinFixture f(3, 5);
        RyScene scene;
        scene.addNode(f.skeleton.get());
        for (RyBoneBinding *binding : f.skin->bindings())
            binding->setWeights(ryMapOf({100, 200, 0, 0, 65535}));
        QSignalSpy drawn(&scene, &RyScene::drawnDataChanged);
        RyWeightMap *map = f.skin->bindings()[0]->getWeights();
        {
            RyUndoStackHold hold;
            map->beginEdit();
            map->getWeights()[0] = 7;
            map->getWeights()[1] = 8;
            map->finishEdit();
            hold.accept("Paint");
        }
        QCOMPARE(drawn.size(), 1);
        ryUndoStack()->undo();
        QCOMPARE(drawn.size(), 2);
        ryUndoStack()->redo();
        QCOMPARE(drawn.size(), 3);
        f.skin->normalize(0, 31, false);
        QCOMPARE(drawn.size(), 4);
        f.skin->normalize(0, 31, false);
        QCOMPARE(drawn.size(), 4);
        auto *bulge = new RyBulgeBinding(1);
        f.skin->bindings()[1]->setBulgeBinding(1, bulge);
        QCOMPARE(drawn.size(), 5);
        bulge->setLeftWeights(ryMapOf({1, 0, 0, 0, 0}));
        QCOMPARE(drawn.size(), 6);
        bulge->getLeftWeights()->setNumWeights(5);
        QCOMPARE(drawn.size(), 7);
        f.skin->bindings()[1]->setBulgeBinding(1, nullptr);
        QCOMPARE(drawn.size(), 8);
        f.skin->removeBoneBinding(f.skin->bindings()[2]);
        QCOMPARE(drawn.size(), 9);
        ryUndoStack()->clearAll();
    }

    void editsOfTheSkinAreAnnouncedAtTheirEnd()
    {
        SkinFixture f(2, 3);
        QSignalSpy changed(f.skin, &RySkinBinding::skinChanged);
        f.skin->beginEdit();
        f.skin->bindings()[0]->setWeights(ryMapOf({1, 2, 3}));
        f.skin->removeBoneBinding(f.skin->bindings()[1]);
        QCOMPARE(changed.size(), 0);
        f.skin->finishEdit();
        QCOMPARE(changed.size(), 1);
        f.skin->beginEdit();
        f.skin->finishEdit();
        QCOMPARE(changed.size(), 1);
    }

    void declaredKindsAreUndoable()
    {
        SkinFixture f(1, 3);
        {
            RyUndoStackHold hold;
            f.skin->setMapKinds(true, false);
            hold.accept("Kinds");
        }
        QVERIFY(f.skin->hasLocalMaps() && !f.skin->hasGeneralMaps());
        ryUndoStack()->undo();
        QVERIFY(!f.skin->hasLocalMaps());
        ryUndoStack()->redo();
        QVERIFY(f.skin->hasLocalMaps());
    }

    void exactVerticesLeaveTheirMapsAlone()
    {
        SkinFixture f(3, 4);
        RyWeightMap *maps[3] = {ryMapOf({65535, 30000, 0, 0}), ryMapOf({0, 35535, 1000, 0}), ryMapOf({0, 0, 3000, 0})};
        for (size_t i = 0; i < 3; ++i)
            f.skin->bindings()[i]->setWeights(maps[i]);
        const quint64 revision = maps[0]->revision();
        QSignalSpy first(maps[0], &RyWeightMap::weightsChanged);
        QSignalSpy last(maps[2], &RyWeightMap::weightsChanged);
        {
            RyUndoStackHold hold;
            f.skin->normalize(0, 31, false);
            hold.accept("Normalize");
        }
        QCOMPARE(ryUndoStack()->entryCount(0), 2); // the two maps of the third vertex
        QVERIFY(first.isEmpty() && maps[0]->revision() == revision);
        QCOMPARE(last.size(), 1);
        // 1000 of 4000 is a quarter, rounded down; the rest goes to the larger one.
        QCOMPARE(maps[1]->getWeight(2), quint16(16383));
        QCOMPARE(maps[2]->getWeight(2), quint16(49152));
        QCOMPARE(maps[1]->getWeight(1), quint16(35535));
        ryUndoStack()->clearAll();
    }

    void mapMadeWhereAnotherWasDeletedIsRecorded()
    {
        SkinFixture f(1, 2);
        RyBoneBinding *binding = f.skin->bindings()[0];
        RyUndoStackHold hold;
        // Some of these maps come to lie where one lay that the hold has an item of.
        std::vector<RyRef<RyWeightMap>> kept;
        for (int i = 0; i < 50; ++i) {
            RyRef<RyWeightMap> map(ryMapOf({quint16(i), 1}));
            map->setAffected(2, {0}, {9});
            if (i % 2)
                kept.push_back(map);
        }
        binding->setWeights(kept.back().get());
        hold.cancel();
        for (size_t i = 0; i < kept.size(); ++i)
            QCOMPARE(kept[i]->getNumWeights(), 0); // all the way back to the empty map
    }
};

RY_TEST(RySkinAnnouncementsTest)
#include "tst_RySkinAnnouncements.moc"
