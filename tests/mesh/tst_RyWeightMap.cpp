#include "rycore/mesh/RyWeightMap.h"

#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyTest.h"

#include <QSignalSpy>

#include <random>

class RyWeightMapTest : public QObject
{
    Q_OBJECT
private slots:
    void init() { ryUndoStack()->clearAll(); }
    void emptyMap();
    void denseAndSparseAgree();
    void setAffectedDropsWhatDoesNotFit();
    void editsNestAnnounceOnceAndCancel();
    void undoOfWrittenWeights();
    void equalToAPlainArrayInRandomOperations();
};

namespace {

using Model = std::vector<quint16>;

void compareWith(const RyWeightMap &map, const Model &model)
{
    QCOMPARE(map.getNumWeights(), int(model.size()));
    QCOMPARE(map.isEmpty(), model.empty());
    int affected = 0;
    for (size_t i = 0; i < model.size(); ++i) {
        QCOMPARE(map.getWeight(int(i)), model[i]);
        QCOMPARE(map.getFloatWeight(int(i)), float(model[i]) / 65535.0f);
        if (model[i] == 0)
            continue;
        QVERIFY(affected < map.getNumAffected());
        QCOMPARE(map.getAffectedIndices()[affected], int(i));
        QCOMPARE(map.getAffectedWeights()[affected], model[i]);
        ++affected;
    }
    QCOMPARE(map.getNumAffected(), affected);
}

} // namespace

void RyWeightMapTest::emptyMap()
{
    RyWeightMap map("hip");
    QCOMPARE(map.getName(), QString("hip"));
    QCOMPARE(map.objectName(), QString("hip"));
    QVERIFY(map.isEmpty());
    QVERIFY(!map.getWeights());
    QCOMPARE(map.getNumAffected(), 0);
    QCOMPARE(map.getWeight(0), quint16(0));
    map.setNumWeights(3);
    QVERIFY(!map.isEmpty());
    compareWith(map, Model(3));
    map.setNumWeights(-2);
    QVERIFY(map.isEmpty());
}

void RyWeightMapTest::denseAndSparseAgree()
{
    RyWeightMap map;
    map.setNumWeights(6);
    map.beginEdit();
    map.getWeights()[1] = 65535;
    map.getWeights()[4] = 7;
    QCOMPARE(map.getNumAffected(), 2);
    map.getWeights()[4] = 0;
    map.finishEdit();
    compareWith(map, {0, 65535, 0, 0, 0, 0});
    QCOMPARE(map.getFloatWeight(1), 1.0f);
    map.compact();
    compareWith(map, {0, 65535, 0, 0, 0, 0});
    // A pointer that was fetched once serves for the whole edit.
    map.beginEdit();
    quint16 *held = map.getWeights();
    held[3] = 12;
    compareWith(map, {0, 65535, 0, 12, 0, 0});
    held[5] = 13;
    compareWith(map, {0, 65535, 0, 12, 0, 13});
    held[3] = held[5] = 0;
    map.finishEdit();
    compareWith(map, {0, 65535, 0, 0, 0, 0});
    const RyWeightMap &read = map;
    QCOMPARE(read.getWeights()[1], quint16(65535));
    QCOMPARE(map.getWeight(-1), quint16(0));
    QCOMPARE(map.getWeight(6), quint16(0));
}

void RyWeightMapTest::setAffectedDropsWhatDoesNotFit()
{
    RyWeightMap map;
    map.setAffected(5, {-1, 1, 1, 0, 3, 4, 5}, {9, 10, 11, 12, 0, 13, 14});
    compareWith(map, {0, 10, 0, 0, 13});
    map.setAffected(2, {0, 1}, {5});
    compareWith(map, {5, 0});
}

void RyWeightMapTest::editsNestAnnounceOnceAndCancel()
{
    RyWeightMap map;
    map.setNumWeights(4);
    QSignalSpy spy(&map, &RyWeightMap::weightsChanged);
    const quint64 revision = map.revision();
    map.beginEdit();
    map.beginEdit();
    map.getWeights()[2] = 3;
    map.finishEdit();
    QCOMPARE(spy.count(), 0);
    map.finishEdit();
    QCOMPARE(spy.count(), 1);
    QVERIFY(map.revision() > revision);
    map.finishEdit();
    QCOMPARE(spy.count(), 1);
    map.beginEdit();
    map.getWeights()[0] = 8;
    map.setNumWeights(9);
    map.cancelEdit();
    compareWith(map, {0, 0, 3, 0});
    map.cancelEdit();
    map.finishEdit();
    compareWith(map, {0, 0, 3, 0});
}

void RyWeightMapTest::undoOfWrittenWeights()
{
    const RyRef<RyWeightMap> map(new RyWeightMap);
    map->setNumWeights(4);
    {
        RyUndoStackHold hold;
        map->beginEdit();
        map->getWeights()[2] = 300;
        map->getWeights()[3] = 400;
        map->finishEdit();
        hold.accept("paint");
    }
    {
        RyUndoStackHold hold;
        map->setNumWeights(2);
        map->setAffected(2, {0}, {77});
        hold.accept("resize");
    }
    QCOMPARE(ryUndoStack()->entryCount(1), 1);
    compareWith(*map, {77, 0});
    QSignalSpy spy(map.get(), &RyWeightMap::weightsChanged);
    ryUndoStack()->undo();
    compareWith(*map, {0, 0, 300, 400});
    ryUndoStack()->undo();
    compareWith(*map, {0, 0, 0, 0});
    ryUndoStack()->redo();
    compareWith(*map, {0, 0, 300, 400});
    ryUndoStack()->redo();
    compareWith(*map, {77, 0});
    QCOMPARE(spy.count(), 4);
    {
        RyUndoStackHold hold;
        map->setNumWeights(1);
    }
    compareWith(*map, {77, 0});
}

void RyWeightMapTest::equalToAPlainArrayInRandomOperations()
{
    std::mt19937 random(ryTestSeed());
    const auto number = [&random](int n) { return int(random() % unsigned(n)); };
    const RyRef<RyWeightMap> map(new RyWeightMap("random"));
    Model model;
    std::vector<Model> history{model};
    for (int step = 0; step < 1500; ++step) {
        RyUndoStackHold hold;
        switch (number(6)) {
        case 0:
            if (number(4) == 0) {
                model.assign(size_t(number(60)), 0);
                map->setNumWeights(int(model.size()));
            }
            break;
        case 1:
            map->compact();
            break;
        case 2: {
            std::vector<int> indices;
            std::vector<quint16> weights;
            model.assign(size_t(number(60)), 0);
            for (size_t i = 0; i < model.size(); ++i) {
                if (number(3) == 0) {
                    model[i] = quint16(random());
                    indices.push_back(int(i));
                    weights.push_back(model[i]);
                }
            }
            map->setAffected(int(model.size()), indices, weights);
            break;
        }
        default:
            map->beginEdit();
            if (quint16 *weights = map->getWeights()) {
                for (int k = number(8); k > 0; --k) {
                    const size_t i = size_t(number(int(model.size())));
                    model[i] = weights[i] = number(3) ? quint16(random()) : quint16(0);
                }
            }
            if (number(5) == 0 && model == history.back())
                map->cancelEdit();
            else
                map->finishEdit();
        }
        hold.accept("step");
        history.push_back(model);
        compareWith(*map, model);
        if (number(10) == 0) {
            const RyRef<RyWeightMap> copy(map->copy());
            QCOMPARE(copy->getName(), map->getName());
            compareWith(*copy, model);
        }
    }
    for (size_t i = history.size(); i-- > 0;) {
        compareWith(*map, history[i]);
        ryUndoStack()->undo();
    }
    for (const Model &expected : history) {
        compareWith(*map, expected);
        ryUndoStack()->redo();
    }
}

RY_TEST(RyWeightMapTest)
#include "tst_RyWeightMap.moc"
