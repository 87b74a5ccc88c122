#include "support/RyTest.h"
#include "support/RyUsedMemory.h"

#include "rycore/skin/RySkinBinding.h"

/// What packing the weights of a skin frees.
class RyWeightMemoryTest : public QObject
{
    Q_OBJECT

private slots:
    void packingFreesDenseArrays();
};

void RyWeightMemoryTest::packingFreesDenseArrays()
{
    if (!ryMemoryIsCounted)
        QSKIP("the allocator of this build does not count");
    constexpr int vertices = 4000000;
    RySkinBinding skin;
    const qint64 empty = ryUsedMemory();
    std::vector<RyWeightMap *> maps;
    for (int i = 0; i < 2; ++i) {
        auto *binding = new RyBoneBinding;
        for (int kind = 0; kind < 5; ++kind) {
            auto *map = new RyWeightMap;
            map->setAffected(vertices, {7, 1000 + i, vertices - 1}, {65535, 3, 11});
            maps.push_back(map);
            if (kind == 0)
                binding->setWeights(map);
            else if (kind == 4)
                binding->setScaleWeights(map);
            else
                binding->setLocalWeights(map, kind - 1);
        }
        skin.addBoneBinding(binding);
    }
    constexpr qint64 dense = qint64(vertices) * qint64(sizeof(quint16));
    QVERIFY(ryUsedMemory() - empty < dense);
    for (RyWeightMap *map : maps)
        QVERIFY(map->getWeights());
    QVERIFY(ryUsedMemory() - empty > 9 * dense);
    skin.reduceWeightMemory();
    QVERIFY2(ryUsedMemory() - empty < dense, qPrintable(QString::number(ryUsedMemory() - empty)));
    for (const RyWeightMap *map : maps) {
        QCOMPARE(map->getNumWeights(), vertices);
        QCOMPARE(map->getWeight(7), quint16(65535));
        QCOMPARE(map->getWeight(vertices - 1), quint16(11));
    }
}

RY_TEST(RyWeightMemoryTest)

#include "tst_weightMemory.moc"
