#include "support/RyTest.h"

#include "RySkinnedScene.h"

#include "pluginsource/RyJointTools/operations/duplicateBones.h"
#include "rycore/scene/assets/RyAssetIOMgr.h"

#include <malloc.h>

#if defined(__SANITIZE_ADDRESS__)
static constexpr bool memoryIsCounted = false;
#else
static constexpr bool memoryIsCounted = true;
#endif

/// Weights of a skin after bones were duplicated: no dense array stays.
class RyDuplicateMemoryTest : public QObject
{
    Q_OBJECT

private slots:
    void weightsArePacked();
};

void RyDuplicateMemoryTest::weightsArePacked()
{
    if (!memoryIsCounted)
        QSKIP("the allocator of this build does not count");
    constexpr int vertices = 8000000;
    const auto used = [] {
        const struct mallinfo2 info = mallinfo2();
        return qint64(info.uordblks) + qint64(info.hblkhd);
    };
    RySkinnedScene scene(RySkinnedScene::General, 3);
    for (const RyBoneBinding *binding : scene.skin->bindings())
        binding->getWeights()->setAffected(vertices, {5}, {65535});
    const qint64 before = used();
    // Somebody has painted on a bone that is not duplicated.
    QVERIFY(scene.binding(scene.hip)->getWeights()->getWeights());
    constexpr qint64 dense = qint64(vertices) * qint64(sizeof(quint16));
    QVERIFY(used() - before >= dense);
    RyAssetIOMgr assets;
    QVERIFY(duplicateBones(scene.figure, {scene.lFoot}, assets).empty());
    QCOMPARE(scene.skin->getNumBoneBindings(), 6);
    QVERIFY2(used() - before < dense / 2, qPrintable(QString::number(used() - before)));
}

RY_TEST(RyDuplicateMemoryTest)

#include "tst_duplicateMemory.moc"
