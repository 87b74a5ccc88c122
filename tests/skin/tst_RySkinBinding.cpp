#include "skin/SkinFixture.h"

#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QSignalSpy>

class RySkinBindingTest : public QObject
{
    Q_OBJECT
private slots:
    void init() { ryUndoStack()->clearAll(); }
    void skinIsFoundFromAnyNode();
    void bindingsKeepTheirOrder();
    void bindingsAreFoundByTheBoneTheyHave();
    void kindsOfMaps();
    void normalizeScalesToFullWeight();
    void normalizeGivesTheRestToTheLargest();
    void normalizeLeavesOtherKindsAlone();
    void normalizeOfRandomWeightsIsExact();
    void reduceWeightMemoryChangesNothing();
    void generalMapsOfAllBindings();
    void undoOfBindingsMapsAndNormalize();
    void removedBindingLivesInItsUndoStep();
    void changesAreAnnounced();
};

void RySkinBindingTest::skinIsFoundFromAnyNode()
{
    SkinFixture f;
    QCOMPARE(RySkinBinding::findSkinFromNode(f.skeleton.get()), f.skin);
    for (const RyBone *bone : f.bones)
        QCOMPARE(RySkinBinding::findSkinFromNode(bone), f.skin);
    QVERIFY(!RySkinBinding::findSkinFromNode(nullptr));
    const RyRef<RyBone> alone(new RyBone);
    QVERIFY(!RySkinBinding::findSkinFromNode(alone.get()));
    QCOMPARE(RySkinBinding::findSkin(f.skeleton.get(), nullptr), f.skin);
    QVERIFY(!RySkinBinding::findSkin(nullptr, nullptr));
    const RyRef<RySkeleton> bare(new RySkeleton);
    QVERIFY(!RySkinBinding::findSkin(bare.get(), nullptr));
    bare->setObject(new RyObject);
    QVERIFY(!RySkinBinding::findSkin(bare.get(), nullptr));
}

void RySkinBindingTest::bindingsKeepTheirOrder()
{
    SkinFixture f(4);
    QCOMPARE(f.skin->getNumBoneBindings(), 4);
    for (size_t i = 0; i < 4; ++i) {
        QCOMPARE(f.skin->bindings()[i]->getBone(), f.bones[i]);
        QCOMPARE(f.skin->bindings()[i]->getName(), f.bones[i]->getName());
        QCOMPARE(f.skin->findBoneBinding(f.bones[i]), f.skin->bindings()[i]);
        QCOMPARE(f.skin->bindings()[i]->getSkin(), f.skin);
    }
    QVERIFY(!f.skin->findBoneBinding(nullptr));
    QVERIFY(!f.skin->findBoneBinding(f.skeleton.get()));
    QVERIFY(!f.skin->addBoneBinding(nullptr));
    QVERIFY(!f.skin->addBoneBinding(f.skin->bindings()[0]));
    QVERIFY(!f.skin->removeBoneBinding(nullptr));
    const std::vector<RyBoneBinding *> walk = f.skin->boneBindingIterator();
    QVERIFY(f.skin->removeBoneBinding(walk[1]));
    QCOMPARE(walk.size(), size_t(4));
    QCOMPARE(f.skin->getNumBoneBindings(), 3);
    QVERIFY(!f.skin->findBoneBinding(f.bones[1]));
    QCOMPARE(f.skin->bindings()[1]->getBone(), f.bones[2]);
    // A binding without a bone is no answer to null.
    f.skin->addBoneBinding(new RyBoneBinding);
    QVERIFY(!f.skin->findBoneBinding(nullptr));
}

void RySkinBindingTest::bindingsAreFoundByTheBoneTheyHave()
{
    SkinFixture f(4);
    RyBoneBinding *second = f.skin->bindings()[1];
    second->setBone(f.bones[3]);
    QVERIFY(!f.skin->findBoneBinding(f.bones[1]));
    QCOMPARE(f.skin->findBoneBinding(f.bones[3]), second); // the first of two
    RyBoneBinding *fourth = f.skin->bindings()[3];
    {
        RyUndoStackHold hold;
        f.skin->removeBoneBinding(second);
        hold.accept(QStringLiteral("Remove"));
    }
    QCOMPARE(f.skin->findBoneBinding(f.bones[3]), fourth);
    ryUndoStack()->undo();
    QCOMPARE(f.skin->findBoneBinding(f.bones[3]), second);
    second->setBone(f.bones[1]);
    QCOMPARE(f.skin->findBoneBinding(f.bones[1]), second);
    // A bone that went leaves a binding without one, whoever gets its address.
    auto *going = new RyBone;
    auto *binding = new RyBoneBinding;
    binding->setBone(going);
    f.skin->addBoneBinding(binding);
    QCOMPARE(f.skin->findBoneBinding(going), binding);
    delete going;
    QVERIFY(!f.skin->findBoneBinding(going));
}

void RySkinBindingTest::kindsOfMaps()
{
    SkinFixture f(2);
    QVERIFY(!f.skin->hasLocalMaps() && !f.skin->hasGeneralMaps());
    f.skin->setMapKinds(true, false);
    QVERIFY(f.skin->hasLocalMaps() && !f.skin->hasGeneralMaps());
    f.skin->setMapKinds(false, true);
    QVERIFY(!f.skin->hasLocalMaps() && f.skin->hasGeneralMaps());
    f.skin->setMapKinds(false, false);
    f.skin->bindings()[1]->setScaleWeights(new RyWeightMap);
    QVERIFY(!f.skin->hasLocalMaps() && !f.skin->hasGeneralMaps());
    f.skin->bindings()[1]->setLocalWeights(new RyWeightMap, 2);
    QVERIFY(f.skin->hasLocalMaps() && !f.skin->hasGeneralMaps());
    f.skin->bindings()[0]->setWeights(new RyWeightMap);
    QVERIFY(f.skin->hasLocalMaps() && f.skin->hasGeneralMaps());
}

void RySkinBindingTest::normalizeScalesToFullWeight()
{
    SkinFixture f(3, 5);
    const auto &b = f.skin->bindings();
    // Empty, already full, too little, too much, one bone alone.
    b[0]->setWeights(ryMapOf({0, 30000, 1000, 65535, 0}));
    b[1]->setWeights(ryMapOf({0, 35535, 3000, 65535, 0}));
    b[2]->setWeights(ryMapOf({0, 0, 0, 0, 1}));
    f.skin->normalize(0, 31, 0);
    const auto weights = [&](int vertex) {
        return std::array<int, 3>{b[0]->getWeights()->getWeight(vertex), b[1]->getWeights()->getWeight(vertex),
                                  b[2]->getWeights()->getWeight(vertex)};
    };
    QVERIFY((weights(0) == std::array<int, 3>{0, 0, 0}));
    QVERIFY((weights(1) == std::array<int, 3>{30000, 35535, 0}));
    QVERIFY((weights(2) == std::array<int, 3>{16383, 49152, 0}));
    QVERIFY((weights(3) == std::array<int, 3>{32768, 32767, 0}));
    QVERIFY((weights(4) == std::array<int, 3>{0, 0, 65535}));
}

void RySkinBindingTest::normalizeGivesTheRestToTheLargest()
{
    SkinFixture f(4, 2);
    const auto &b = f.skin->bindings();
    b[0]->setWeights(ryMapOf({1, 2}));
    b[1]->setWeights(ryMapOf({1, 5}));
    b[2]->setWeights(ryMapOf({1, 5}));
    b[3]->setWeights(ryMapOf({1, 1}));
    f.skin->normalize(0, 1, false);
    // 65535 / 4 = 16383.75: the first of the equal ones takes the three that are left.
    QCOMPARE(int(b[0]->getWeights()->getWeight(0)), 16386);
    for (size_t i = 1; i < 4; ++i)
        QCOMPARE(int(b[i]->getWeights()->getWeight(0)), 16383);
    // 65535 / 13 = 5041.15: 2 and 1 parts round down, the first of the two largest takes the rest.
    QCOMPARE(int(b[0]->getWeights()->getWeight(1)), 10082);
    QCOMPARE(int(b[2]->getWeights()->getWeight(1)), 25205);
    QCOMPARE(int(b[3]->getWeights()->getWeight(1)), 5041);
    QCOMPARE(int(b[1]->getWeights()->getWeight(1)), 65535 - 10082 - 25205 - 5041);
}

void RySkinBindingTest::normalizeLeavesOtherKindsAlone()
{
    for (int type = 0; type < 5; ++type) {
        SkinFixture f(1, 1);
        RyBoneBinding *b = f.skin->bindings()[0];
        b->setWeights(ryMapOf({10}));
        for (int axis = 0; axis < 3; ++axis)
            b->setLocalWeights(ryMapOf({10}), axis);
        b->setScaleWeights(ryMapOf({10}));
        f.skin->normalize(0, 1 << type, false);
        const std::vector<RyWeightMap *> maps = b->getAllWeightMaps();
        QCOMPARE(maps.size(), size_t(5));
        for (int k = 0; k < 5; ++k)
            QCOMPARE(int(maps[size_t(k)]->getWeight(0)), k == type ? 65535 : 10);
    }
}

void RySkinBindingTest::normalizeOfRandomWeightsIsExact()
{
    SkinFixture f(12, 800);
    for (RyBoneBinding *b : f.skin->bindings()) {
        std::vector<quint16> weights(800, 0);
        for (quint16 &w : weights)
            w = f.random() % 3 == 0 ? quint16(f.random() % (f.random() % 2 ? 65536u : 20u)) : quint16(0);
        b->setWeights(ryMapOf(weights));
    }
    std::vector<std::vector<double>> before(800);
    for (int v = 0; v < 800; ++v) {
        for (const RyBoneBinding *b : f.skin->bindings())
            before[size_t(v)].push_back(b->getWeights()->getWeight(v));
    }
    f.skin->normalize(0, 31, 0);
    for (int v = 0; v < 800; ++v) {
        const std::vector<double> &was = before[size_t(v)];
        double sum = 0.0;
        for (double w : was)
            sum += w;
        const size_t largest = size_t(std::max_element(was.begin(), was.end()) - was.begin());
        int now = 0;
        for (size_t k = 0; k < was.size(); ++k) {
            const int w = f.skin->bindings()[k]->getWeights()->getWeight(v);
            now += w;
            if (sum == 65535.0)
                QCOMPARE(w, int(was[k]));
            else if (sum > 0.0 && k != largest)
                QVERIFY(std::fabs(w - was[k] * 65535.0 / sum) < 1.0);
            else if (sum > 0.0)
                QVERIFY(std::fabs(w - was[k] * 65535.0 / sum) < 12.0);
        }
        QCOMPARE(now, sum > 0.0 ? 65535 : 0);
    }
    const QString once = dumpWeights(f.skin);
    f.skin->normalize(0, 31, 0);
    QCOMPARE(dumpWeights(f.skin), once);
}

void RySkinBindingTest::reduceWeightMemoryChangesNothing()
{
    SkinFixture f(3, 50);
    const auto weights = f.randomWeights();
    for (size_t i = 0; i < 3; ++i)
        f.skin->bindings()[i]->setWeights(ryMapOf(weights[i]));
    f.skin->bindings()[1]->getWeights()->setNumWeights(50);
    const QString before = dumpWeights(f.skin);
    const quint64 revision = f.skin->bindings()[1]->getWeights()->revision();
    f.skin->reduceWeightMemory();
    QCOMPARE(dumpWeights(f.skin), before);
    QCOMPARE(f.skin->bindings()[1]->getWeights()->revision(), revision);
    QCOMPARE(f.skin->bindings()[1]->getWeights()->getNumWeights(), 50);
}

void RySkinBindingTest::generalMapsOfAllBindings()
{
    SkinFixture f(3, 3);
    const auto &b = f.skin->bindings();
    b[0]->setWeights(ryMapOf({1, 2, 3}));
    b[0]->setLocalWeights(ryMapOf({9, 9, 9}), 0);
    b[1]->setLocalWeights(ryMapOf({3, 1, 65535}), 0);
    b[1]->setLocalWeights(ryMapOf({3, 0, 65535}), 1);
    b[1]->setLocalWeights(ryMapOf({4, 0, 65535}), 2);
    std::vector<RyRef<RyWeightMap>> maps;
    std::vector<RyBoneBinding *> bindings;
    f.skin->buildGeneralWeightMaps(maps, bindings, 54);
    QCOMPARE(bindings.size(), size_t(3));
    QCOMPARE(maps.size(), size_t(2));
    QVERIFY(bindings == b);
    QCOMPARE(maps[0].get(), b[0]->getWeights());
    // 10 / 3 rounds to 3, 1 / 3 to 0.
    QCOMPARE(int(maps[1]->getWeight(0)), 3);
    QCOMPARE(int(maps[1]->getWeight(1)), 0);
    QCOMPARE(int(maps[1]->getWeight(2)), 65535);
    QCOMPARE(maps[1]->getNumWeights(), 3);
    QVERIFY(!b[1]->getWeights());
    b[2]->setWeights(ryMapOf({0, 0, 0}));
    maps.clear();
    bindings.clear();
    f.skin->buildGeneralWeightMaps(maps, bindings, 54);
    QCOMPARE(bindings.size(), maps.size());
    maps.clear();
    bindings.clear();
    f.skin->buildGeneralWeightMaps(maps, bindings, 0);
    QCOMPARE(bindings.size(), size_t(3));
    QCOMPARE(maps.size(), size_t(2));
    maps.clear();
    bindings.clear();
    const RyRef<RySkinBinding> empty(new RySkinBinding);
    empty->buildGeneralWeightMaps(maps, bindings, 54);
    QVERIFY(maps.empty() && bindings.empty());
}

void RySkinBindingTest::undoOfBindingsMapsAndNormalize()
{
    SkinFixture f(4, 40);
    const auto weights = f.randomWeights();
    for (size_t i = 0; i < 4; ++i)
        f.skin->bindings()[i]->setWeights(ryMapOf(weights[i]));
    const auto first = f.skin->bindings();
    std::vector<QString> history{dumpWeights(f.skin)};
    const auto step = [&](auto edit) {
        RyUndoStackHold hold;
        edit();
        hold.accept("step");
        history.push_back(dumpWeights(f.skin));
        QVERIFY(history[history.size() - 2] != history.back());
    };
    step([&] { f.skin->removeBoneBinding(first[1]); });
    step([&] { f.skin->normalize(0, 31, 0); });
    step([&] {
        auto *added = new RyBoneBinding;
        added->setBone(f.bones[1]);
        for (int axis = 0; axis < 3; ++axis)
            added->setLocalWeights(ryMapOf(weights[size_t(axis)]), axis);
        added->setScaleWeights(ryMapOf(weights[3]));
        f.skin->addBoneBinding(added);
        f.skin->normalize(0, 31, 0);
    });
    step([&] { first[0]->setWeights(nullptr); });
    step([&] {
        first[2]->getWeights()->beginEdit();
        first[2]->getWeights()->getWeights()[7] += 5;
        first[2]->getWeights()->finishEdit();
    });
    step([&] { first[3]->setBone(f.bones[0]); });
    step([&] {
        first[3]->setBulgeBinding(1, new RyBulgeBinding(1));
        first[3]->getBulgeBinding(1)->adjustBulgeValues(1, 2, 3, 4);
    });
    step([&] { first[3]->getBulgeBinding(1)->adjustBulgeValues(1, 2, 3, 5); });
    step([&] {
        f.skin->removeBoneBinding(first[0]);
        f.skin->removeBoneBinding(first[3]);
        f.skin->addBoneBinding(new RyBoneBinding);
    });
    for (int again = 0; again < 2; ++again) {
        for (size_t i = history.size(); i-- > 0;) {
            QCOMPARE(dumpWeights(f.skin), history[i]);
            ryUndoStack()->undo();
        }
        QVERIFY(f.skin->bindings() == first);
        for (const QString &expected : history) {
            QCOMPARE(dumpWeights(f.skin), expected);
            ryUndoStack()->redo();
        }
    }
    {
        RyUndoStackHold hold;
        f.skin->removeBoneBinding(f.skin->bindings()[0]);
        f.skin->bindings()[0]->setWeights(nullptr);
    }
    QCOMPARE(dumpWeights(f.skin), history.back());
}

void RySkinBindingTest::removedBindingLivesInItsUndoStep()
{
    SkinFixture f(2, 4);
    QPointer<RyBoneBinding> binding = f.skin->bindings()[0];
    {
        RyUndoStackHold hold;
        f.skin->removeBoneBinding(binding);
        hold.accept("remove");
    }
    QVERIFY(binding && !binding->getSkin());
    ryUndoStack()->undo();
    QCOMPARE(binding->getSkin(), f.skin);
    ryUndoStack()->redo();
    ryUndoStack()->clearAll();
    QVERIFY(!binding);
    binding = f.skin->bindings()[0];
    f.skin->removeBoneBinding(binding);
    QVERIFY(!binding);
}

void RySkinBindingTest::changesAreAnnounced()
{
    SkinFixture f(2, 4);
    RyBoneBinding *binding = f.skin->bindings()[0];
    QSignalSpy spy(f.skin, &RySkinBinding::skinChanged);
    binding->setWeights(ryMapOf({1, 2, 3, 4}));
    QCOMPARE(spy.count(), 1);
    binding->getWeights()->setNumWeights(4);
    QCOMPARE(spy.count(), 2);
    const RyRef<RyWeightMap> old(binding->getWeights());
    binding->setWeights(nullptr);
    QCOMPARE(spy.count(), 3);
    old->setNumWeights(4);
    QCOMPARE(spy.count(), 3);
    const RyRef<RyBoneBinding> kept(binding);
    f.skin->removeBoneBinding(binding);
    QCOMPARE(spy.count(), 4);
    kept->setWeights(old.get());
    QCOMPARE(spy.count(), 4);
}

RY_TEST(RySkinBindingTest)
#include "tst_RySkinBinding.moc"
