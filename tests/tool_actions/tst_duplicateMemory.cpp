#include "support/RyTest.h"
#include "support/RyUsedMemory.h"

#include "RySkinnedScene.h"

#include "pluginsource/RyJointTools/operations/duplicateBones.h"
#include "rycore/scene/assets/RyAssetIOMgr.h"

/// Weights of a skin after bones were duplicated: no dense array stays.
class RyDuplicateMemoryTest : public QObject
{
    Q_OBJECT

private slots:
    void weightsArePacked();
};

void RyDuplicateMemoryTest::weightsArePacked()
{
    if (!ryMemoryIsCounted)
        QSKIP("the allocator of this build does not count");
    constexpr int vertices = 8000000;
    RySkinnedScene scene(RySkinnedScene::General, 3);
    for (const RyBoneBinding *binding : scene.skin->bindings())
        binding->getWeights()->setAffected(vertices, {5}, {65535});
    const qint64 before = ryUsedMemory();
    // Somebody has painted on a bone that is not duplicated.
    QVERIFY(scene.binding(scene.hip)->getWeights()->getWeights());
    constexpr qint64 dense = qint64(vertices) * qint64(sizeof(quint16));
    QVERIFY(ryUsedMemory() - before >= dense);
    RyAssetIOMgr assets;
    QVERIFY(duplicateBones(scene.figure, {scene.lFoot}, assets).empty());
    QCOMPARE(scene.skin->getNumBoneBindings(), 6);
    QVERIFY2(ryUsedMemory() - before < dense / 2, qPrintable(QString::number(ryUsedMemory() - before)));
}

RY_TEST(RyDuplicateMemoryTest)

#include "tst_duplicateMemory.moc"
