#include "support/RyTest.h"

#include "RySkinnedScene.h"

#include "pluginsource/RyJointTools/operations/createSiblingBone.h"
#include "pluginsource/RyJointTools/operations/splitBone.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/checkUndo.h"

#include <array>

namespace {

using Make = RyBone *(*)(RyBone *);

/// The five maps of a binding: general, local X, Y, Z, scale; null where there is none.
std::array<RyWeightMap *, 5> mapsOf(const RyBoneBinding *binding)
{
    return {binding->getWeights(), binding->getLocalWeights(0), binding->getLocalWeights(1),
            binding->getLocalWeights(2), binding->getScaleWeights()};
}

/// The scene with a figure on the left foot whose mesh the foot and a bone of its own move; nothing about its weights
/// is even, and their sums are other than full.
struct TwoFigures : RySkinnedScene
{
    TwoFigures() : RySkinnedScene(Both, 40)
    {
        pose();
        lFoot->getYScaleControl()->setValue(1.0f);
        auto *boot = new RyFigure;
        boot->setName(QStringLiteral("boot"));
        auto *bootObject = new RyObject;
        auto *mesh = new RyFacetMesh;
        mesh->setPositions({{9, 8, 0}, {11, 5, 3}, {12, 4, 6}, {10, 2, 12}});
        bootObject->addShape(new RyFacetShape(mesh));
        bootSkin = new RySkinBinding;
        bootObject->addModifier(bootSkin);
        boot->setObject(bootObject);
        lFoot->addNodeChild(boot);
        ryScene()->addNode(boot);
        lace = makeBone(boot, "lace", {11, 5, 3}, {12, 6, 5});
        bind(lFoot, {65535, 3001, 1, 50001});
        bind(lace, {0, 5000, 65534, 25001});
    }
    void bind(RyBone *bone, const std::vector<quint16> &weights) const
    {
        auto *binding = new RyBoneBinding;
        binding->setBone(bone);
        binding->setWeights(ryMapOf(weights));
        bootSkin->addBoneBinding(binding);
    }

    RySkinBinding *bootSkin;
    RyBone *lace;
};

} // namespace

Q_DECLARE_METATYPE(Make)

/// A bone that gives half of its weights to a new one, in whatever skins it is bound.
class RySharedWeightsTest : public QObject
{
    Q_OBJECT

private slots:
    void everySkinIsShared_data() { ways(); }
    void everySkinIsShared();
    void undoOfSeveralSkins_data() { ways(); }
    void undoOfSeveralSkins();
    void sumsThatAreNotWhole_data() { ways(); }
    void sumsThatAreNotWhole();
    void bulgesStay_data() { ways(); }
    void bulgesStay();

private:
    static void ways()
    {
        QTest::addColumn<Make>("make");
        QTest::newRow("split") << Make(splitBone);
        QTest::newRow("sibling") << Make(createSiblingBone);
    }
};

void RySharedWeightsTest::everySkinIsShared()
{
    QFETCH(Make, make);
    TwoFigures scene;
    const auto own = mapsOf(scene.binding(scene.lFoot));
    std::array<std::vector<int>, 5> before;
    for (size_t kind = 0; kind < 5; ++kind)
        before[kind] = ryWeightsOf(own[kind]);
    RyBone *bone = make(scene.lFoot);
    QVERIFY(bone);

    const RyBoneBinding *copy = scene.binding(bone);
    QVERIFY(copy);
    for (size_t kind = 0; kind < 5; ++kind) {
        const std::vector<int> kept = ryWeightsOf(own[kind]);
        const std::vector<int> given = ryWeightsOf(mapsOf(copy)[kind]);
        QCOMPARE(given.size(), before[kind].size());
        for (size_t v = 0; v < given.size(); ++v) {
            QCOMPARE(kept[v] + given[v], before[kind][v]);
            QVERIFY(kept[v] - given[v] == 0 || kept[v] - given[v] == 1);
        }
    }

    const RyBoneBinding *copyInBoot = scene.bootSkin->findBoneBinding(bone);
    QVERIFY(copyInBoot);
    QCOMPARE(scene.bootSkin->getNumBoneBindings(), 3);
    const std::vector<int> kept = ryWeightsOf(scene.bootSkin->findBoneBinding(scene.lFoot)->getWeights());
    const std::vector<int> given = ryWeightsOf(copyInBoot->getWeights());
    const std::vector<int> other = ryWeightsOf(scene.bootSkin->findBoneBinding(scene.lace)->getWeights());
    for (size_t v = 0; v < 4; ++v)
        QCOMPARE(kept[v] + given[v] + other[v], int(RyWeightMap::FullWeight));
    // Halves of 65535, 3001, 1 and 50001; the sums 8001 and 75002 are then made full.
    QCOMPARE(kept[0], 32768);
    QCOMPARE(given[0], 32767);
    QCOMPARE(given[1], 1500 * 65535 / 8001);
    QCOMPARE(kept[1], 1501 * 65535 / 8001);
    QCOMPARE(kept[2], 1);
    QCOMPARE(given[2], 0);
    QVERIFY(std::abs(kept[3] - 25001.0 * 65535 / 75002) < 3);
    QVERIFY(std::abs(given[3] - 25000.0 * 65535 / 75002) < 3);
}

void RySharedWeightsTest::undoOfSeveralSkins()
{
    QFETCH(Make, make);
    TwoFigures scene;
    checkUndoInHold([&] { QVERIFY(make(scene.lFoot)); });
}

void RySharedWeightsTest::sumsThatAreNotWhole()
{
    QFETCH(Make, make);
    RySkinnedScene scene(RySkinnedScene::Both, 5);
    // Too little, far too little, full, too much, none. Each kind of map its own.
    for (quint16 kind = 0; kind < 5; ++kind) {
        const std::vector<std::vector<quint16>> weights = {{quint16(1000 + kind), 0, 20000, 65535, 0},
                                                           {0, 0, 5535, 65535, 0},
                                                           {3001, 3, 40000, 40001, 0},
                                                           {0, 4, 0, 0, 0},
                                                           {7, 0, 0, 1, 0}};
        const std::vector<RyBone *> bones = {scene.hip, scene.lThigh, scene.lShin, scene.lFoot, scene.rThigh};
        for (size_t i = 0; i < bones.size(); ++i) {
            RyWeightMap *map = mapsOf(scene.binding(bones[i]))[kind];
            map->beginEdit();
            std::copy(weights[i].begin(), weights[i].end(), map->getWeights());
            map->finishEdit();
        }
    }
    RyBone *bone = make(scene.lShin);
    QVERIFY(bone);
    QCOMPARE(ryFaultsOf(scene.figure), QString());
    for (size_t kind = 0; kind < 5; ++kind) {
        const std::vector<int> kept = ryWeightsOf(mapsOf(scene.binding(scene.lShin))[kind]);
        const std::vector<int> given = ryWeightsOf(mapsOf(scene.binding(bone))[kind]);
        const std::vector<int> hip = ryWeightsOf(mapsOf(scene.binding(scene.hip))[kind]);
        const int sum = 1000 + int(kind) + 3001 + 7;
        QCOMPARE(given[0], 1500 * 65535 / sum);
        QVERIFY(kept[0] >= 1501 * 65535 / sum && kept[0] < 1501 * 65535 / sum + 5);
        QCOMPARE(hip[0], (1000 + int(kind)) * 65535 / sum);
        QCOMPARE(kept[1], 2 * 65535 / 7);
        QCOMPARE(given[1], 1 * 65535 / 7);
        QCOMPARE(kept[2], 20000);
        QCOMPARE(given[2], 20000);
        QCOMPARE(given[3], int(qint64(20000) * 65535 / 171072));
        QCOMPARE(kept[4] + given[4], 0);
    }
}

void RySharedWeightsTest::bulgesStay()
{
    QFETCH(Make, make);
    RySkinnedScene scene(RySkinnedScene::Local, 4);
    for (int axis = 0; axis < 3; ++axis) {
        auto *bulge = new RyBulgeBinding(axis);
        bulge->setLeftWeights(ryMapOf({65535, 3, 0, quint16(axis)}));
        bulge->setRightWeights(ryMapOf({0, 7, 65535, 11}));
        bulge->adjustBulgeValues(0.5f, -0.25f, 1.5f, float(axis));
        scene.binding(scene.lShin)->setBulgeBinding(axis, bulge);
    }
    const RyBone *bone = make(scene.lShin);
    QVERIFY(bone);
    for (int axis = 0; axis < 3; ++axis) {
        // They are of the joint where the bone begins, whole as they are.
        QVERIFY(!scene.binding(bone)->getBulgeBinding(axis));
        const RyBulgeBinding *bulge = scene.binding(scene.lShin)->getBulgeBinding(axis);
        QVERIFY(bulge);
        QCOMPARE(ryWeightsOf(bulge->getLeftWeights()), std::vector<int>({65535, 3, 0, axis}));
        QCOMPARE(ryWeightsOf(bulge->getRightWeights()), std::vector<int>({0, 7, 65535, 11}));
        float values[4];
        bulge->getBulgeValues(values[0], values[1], values[2], values[3]);
        QCOMPARE(values[0], 0.5f);
        QCOMPARE(values[3], float(axis));
    }
}

RY_TEST(RySharedWeightsTest)

#include "tst_sharedWeights.moc"
