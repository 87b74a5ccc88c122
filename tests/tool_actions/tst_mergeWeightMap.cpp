#include "support/RyTest.h"

#include "RySkinnedScene.h"

#include "pluginsource/RyJointTools/operations/deleteBone.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QSignalSpy>

/// How the weights of one map are added to those of another.
class RyMergeWeightMapTest : public QObject
{
    Q_OBJECT

private slots:
    void mergeAddsUpToFullWeight();
    void mergeNeedsEqualCounts();
    void mergeIsOneEdit();
    void mergeKeepsMapsSparse();
};

void RyMergeWeightMapTest::mergeAddsUpToFullWeight()
{
    const RyRef<RyWeightMap> source(ryMapOf({0, 5, 40000, 65535, 0, 1}));
    const RyRef<RyWeightMap> target(ryMapOf({0, 7, 30000, 65535, 9, 0}));
    mergeWeightMap(source.get(), target.get());
    QCOMPARE(ryWeightsOf(target.get()), std::vector<int>({0, 12, 65535, 65535, 9, 1}));
    QCOMPARE(ryWeightsOf(source.get()), std::vector<int>({0, 5, 40000, 65535, 0, 1}));
    QCOMPARE(target->getNumAffected(), 5);
}

void RyMergeWeightMapTest::mergeNeedsEqualCounts()
{
    const RyRef<RyWeightMap> source(ryMapOf({1, 2, 3}));
    const RyRef<RyWeightMap> target(ryMapOf({1, 2}));
    mergeWeightMap(source.get(), target.get());
    mergeWeightMap(source.get(), nullptr);
    mergeWeightMap(nullptr, target.get());
    QCOMPARE(ryWeightsOf(target.get()), std::vector<int>({1, 2}));
}

void RyMergeWeightMapTest::mergeIsOneEdit()
{
    const RyRef<RyWeightMap> source(ryMapOf({1, 0}));
    const RyRef<RyWeightMap> target(ryMapOf({1, 2}));
    const QSignalSpy spy(target.get(), SIGNAL(weightsChanged()));
    RyUndoStackHold hold;
    mergeWeightMap(source.get(), target.get());
    hold.accept(QString());
    QCOMPARE(spy.count(), 1);
    QCOMPARE(target->editLevel(), 0);
    ryUndoStack()->undo();
    QCOMPARE(ryWeightsOf(target.get()), std::vector<int>({1, 2}));
    ryUndoStack()->redo();
    QCOMPARE(ryWeightsOf(target.get()), std::vector<int>({2, 2}));
    ryUndoStack()->clearAll();
}

void RyMergeWeightMapTest::mergeKeepsMapsSparse()
{
    // So many that dense arrays would not fit into memory.
    const int count = 2000000000;
    const RyRef<RyWeightMap> source(new RyWeightMap);
    source->setAffected(count, {5, 1999999999}, {10, 20});
    const RyRef<RyWeightMap> target(new RyWeightMap);
    target->setAffected(count, {4, 5}, {1, 2});
    mergeWeightMap(source.get(), target.get());
    QCOMPARE(target->getNumAffected(), 3);
    QCOMPARE(int(target->getWeight(5)), 12);
    QCOMPARE(int(target->getWeight(1999999999)), 20);
}

RY_TEST(RyMergeWeightMapTest)

#include "tst_mergeWeightMap.moc"
