#include "skin/SkinFixture.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/scene/RyElementDuplicateContext.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

class RyBoneBindingTest : public QObject
{
    Q_OBJECT
private slots:
    void init() { ryUndoStack()->clearAll(); }
    void mapsAreOwned();
    void deletedBoneReadsNull();
    void bulgesAreOwnedAndNamed();
    void bulgeValuesAndUndo();
    void copyIsDeep();
    void duplicateFollowsTheContext();
    void duplicateForAnotherMesh();
};

void RyBoneBindingTest::mapsAreOwned()
{
    RyRef<RyBoneBinding> binding(new RyBoneBinding);
    QVERIFY(binding->getAllWeightMaps().empty());
    QVERIFY(!binding->getWeights() && !binding->getScaleWeights() && !binding->hasLocalWeights());
    QPointer<RyWeightMap> general(new RyWeightMap("g"));
    QPointer<RyWeightMap> local(new RyWeightMap("y"));
    QPointer<RyWeightMap> scale(new RyWeightMap("s"));
    binding->setWeights(general);
    binding->setLocalWeights(local, 1);
    binding->setScaleWeights(scale);
    QCOMPARE(binding->getWeights(), general.data());
    QCOMPARE(binding->getLocalWeights(1), local.data());
    QVERIFY(!binding->getLocalWeights(0) && !binding->getLocalWeights(-1) && !binding->getLocalWeights(3));
    QCOMPARE(binding->getScaleWeights(), scale.data());
    QVERIFY((binding->getAllWeightMaps() == std::vector<RyWeightMap *>{general, local, scale}));
    const quint64 revision = binding->revision();
    binding->setWeights(nullptr);
    QVERIFY(!general && binding->revision() > revision);
    binding = RyRef<RyBoneBinding>();
    QVERIFY(!local && !scale);
}

void RyBoneBindingTest::deletedBoneReadsNull()
{
    const RyRef<RyBoneBinding> binding(new RyBoneBinding);
    {
        const RyRef<RyBone> bone(new RyBone);
        bone->setName("hip");
        binding->setBone(bone.get());
        QCOMPARE(binding->getBone(), bone.get());
        QCOMPARE(binding->getName(), QString("hip"));
    }
    QVERIFY(!binding->getBone());
}

void RyBoneBindingTest::bulgesAreOwnedAndNamed()
{
    const RyRef<RyBone> bone(new RyBone);
    bone->setName("shin");
    const RyRef<RyBoneBinding> binding(new RyBoneBinding);
    binding->setBone(bone.get());
    QVERIFY(!binding->hasBulgeWeights());
    for (int axis = -1; axis < 4; ++axis)
        QVERIFY(!binding->getBulgeBinding(axis));
    auto *bulge = new RyBulgeBinding(2);
    binding->setBulgeBinding(2, bulge);
    QCOMPARE(binding->getBulgeBinding(2), bulge);
    QCOMPARE(bulge->getBoneBinding(), binding.get());
    QVERIFY(!binding->hasBulgeWeights());
    bulge->setLeftWeights(new RyWeightMap("left of shin"));
    QVERIFY(binding->hasBulgeWeights());
    QCOMPARE(bulge->getLeftWeights()->objectName(), QString("left of shin"));
    QVERIFY(!bulge->getRightWeights());
    bulge->updatePropertyNames();
    QCOMPARE(bulge->getPosLeftBulgeController()->getName(), QString("shin_bulgeZPosLeft"));
    QCOMPARE(bulge->getNegRightBulgeController()->getName(), QString("shin_bulgeZNegRight"));
    bone->setName("calf");
    bulge->updatePropertyNames();
    QCOMPARE(bulge->getNegLeftBulgeController()->getName(), QString("calf_bulgeZNegLeft"));
    QCOMPARE(bulge->getPosRightBulgeController()->getName(), QString("calf_bulgeZPosRight"));
    // One bulge is in one binding.
    const RyRef<RyBoneBinding> other(new RyBoneBinding);
    other->setBulgeBinding(0, bulge);
    QVERIFY(!other->getBulgeBinding(0));
    const QPointer<RyBulgeBinding> watched(bulge);
    binding->setBulgeBinding(2, nullptr);
    QVERIFY(!watched);
}

void RyBoneBindingTest::bulgeValuesAndUndo()
{
    const RyRef<RyBulgeBinding> bulge(new RyBulgeBinding(0));
    const auto values = [&] {
        std::array<float, 4> v{};
        bulge->getBulgeValues(v[0], v[1], v[2], v[3]);
        return v;
    };
    QVERIFY((values() == std::array<float, 4>{0, 0, 0, 0}));
    {
        RyUndoStackHold hold;
        bulge->adjustBulgeValues(1, -2, 3, 0.5f);
        bulge->setRightWeights(new RyWeightMap("right"));
        hold.accept("bulge");
    }
    QVERIFY((values() == std::array<float, 4>{1, -2, 3, 0.5f}));
    QCOMPARE(bulge->getPosLeftBulgeController()->getValue(), 1.0f);
    QCOMPARE(bulge->getNegLeftBulgeController()->getValue(), -2.0f);
    QCOMPARE(bulge->getPosRightBulgeController()->getValue(), 3.0f);
    QCOMPARE(bulge->getNegRightBulgeController()->getValue(), 0.5f);
    QCOMPARE(bulge->getPosLeftBulgeController()->getDefaultValue(), 0.0f);
    ryUndoStack()->undo();
    QVERIFY((values() == std::array<float, 4>{0, 0, 0, 0}));
    QVERIFY(!bulge->getRightWeights());
    ryUndoStack()->redo();
    QVERIFY((values() == std::array<float, 4>{1, -2, 3, 0.5f}));
    QCOMPARE(bulge->getRightWeights()->getName(), QString("right"));
}

void RyBoneBindingTest::copyIsDeep()
{
    SkinFixture f(2, 3);
    RyBoneBinding *from = f.skin->bindings()[0];
    from->setWeights(ryMapOf({1, 2, 3}, "general"));
    from->setLocalWeights(ryMapOf({0, 0, 7}, "x"), 0);
    from->setScaleWeights(ryMapOf({0, 5, 0}, "scale"));
    auto *bulge = new RyBulgeBinding(1);
    bulge->setLeftWeights(ryMapOf({4, 0, 0}, "left"));
    bulge->adjustBulgeValues(1, 2, 3, 4);
    bulge->getPosLeftBulgeController()->setDefaultValue(9);
    from->setBulgeBinding(1, bulge);

    const RyRef<RyBoneBinding> copy(from->copyFor(f.bones[1]));
    QCOMPARE(copy->refCount(), 1);
    QVERIFY(!copy->getSkin());
    QCOMPARE(copy->getBone(), f.bones[1]);
    const auto fromMaps = from->getAllWeightMaps();
    const auto copyMaps = copy->getAllWeightMaps();
    QCOMPARE(copyMaps.size(), fromMaps.size());
    for (size_t k = 0; k < copyMaps.size(); ++k) {
        QVERIFY(copyMaps[k] != fromMaps[k]);
        QCOMPARE(copyMaps[k]->getName(), fromMaps[k]->getName());
        for (int i = 0; i < 3; ++i)
            QCOMPARE(copyMaps[k]->getWeight(i), fromMaps[k]->getWeight(i));
    }
    RyBulgeBinding *copied = copy->getBulgeBinding(1);
    QVERIFY(copied && copied != bulge && !copy->getBulgeBinding(0));
    QCOMPARE(copied->getAxis(), 1);
    QCOMPARE(copied->getLeftWeights()->getWeight(0), quint16(4));
    QVERIFY(copied->getLeftWeights() != bulge->getLeftWeights());
    QCOMPARE(copied->getNegRightBulgeController()->getValue(), 4.0f);
    QCOMPARE(copied->getPosLeftBulgeController()->getDefaultValue(), 9.0f);
    QCOMPARE(copied->getPosLeftBulgeController()->getValue(), 1.0f);
    QCOMPARE(copied->getPosLeftBulgeController()->getName(), QString("bone1_bulgeYPosLeft"));
    copy->getWeights()->setNumWeights(3);
    QCOMPARE(from->getWeights()->getWeight(2), quint16(3));
}

void RyBoneBindingTest::duplicateFollowsTheContext()
{
    SkinFixture fixture(2, 3);
    RyBoneBinding *from = fixture.skin->findBoneBinding(fixture.bones[0]);
    from->setWeights(ryMapOf({1, 2, 3}));
    auto *bulge = new RyBulgeBinding(2);
    from->setBulgeBinding(2, bulge);
    bulge->updatePropertyNames();
    bulge->getPosLeftBulgeController()->setValue(0.5f);
    RyERCLink::create(fixture.bones[0]->getXRotControl(), bulge->getPosLeftBulgeController());
    fixture.bones[0]->getXRotControl()->setValue(2);

    RyElementDuplicateContext context(nullptr);
    // A binding that comes before its bone stays at the bone until the context resolves.
    const RyRef<RyBoneBinding> early(qobject_cast<RyBoneBinding *>(from->doDuplicateElement(&context)));
    QCOMPARE(early->getBone(), fixture.bones[0]);
    context.setParentNode(fixture.skeleton.get());
    auto *bone = qobject_cast<RyBone *>(fixture.bones[0]->doDuplicateElement(&context));
    bone->setName("copy");
    const RyRef<RyBoneBinding> late(qobject_cast<RyBoneBinding *>(from->doDuplicateElement(&context)));
    QCOMPARE(late->getBone(), bone);
    QVERIFY(!late->getSkin() && late->getWeights() != from->getWeights());
    QCOMPARE(late->getWeights()->getWeight(2), quint16(3));
    context.createAlaises();
    context.createERC();
    context.doResolve();
    QCOMPARE(early->getBone(), bone);
    QCOMPARE(early->getName(), QString("copy"));
    const RyFloatProperty *swell = late->getBulgeBinding(2)->getPosLeftBulgeController();
    QCOMPARE(swell->getName(), QString("copy_bulgeZPosLeft"));
    QCOMPARE(int(swell->getControllerLinks().size()), 1);
    QCOMPARE(swell->getControllerLinks()[0]->getController(), bone->getXRotControl());
    QCOMPARE(swell->getValue(), 2.5f);
}

void RyBoneBindingTest::duplicateForAnotherMesh()
{
    SkinFixture fixture(1, 3);
    RyBoneBinding *from = fixture.skin->bindings()[0];
    from->setWeights(ryMapOf({1, 2, 3}));
    auto *bulge = new RyBulgeBinding(0);
    bulge->setLeftWeights(ryMapOf({4, 0, 0}));
    from->setBulgeBinding(0, bulge);
    RyElementDuplicateContext context(nullptr);
    context.setVertexCompatible(false);
    const RyRef<RyBoneBinding> copy(qobject_cast<RyBoneBinding *>(from->doDuplicateElement(&context)));
    QVERIFY(copy->getAllWeightMaps().empty());
    QVERIFY(copy->getBulgeBinding(0) && !copy->hasBulgeWeights());
}

RY_TEST(RyBoneBindingTest)
#include "tst_RyBoneBinding.moc"
