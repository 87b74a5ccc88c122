#include "parametric/ArmFixture.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/parametric/RyLegacyDeformer.h"

#include <QObject>

#include <cmath>

/// The weights of parameters as maps.
class LegacyWeightMapsTest : public QObject
{
    Q_OBJECT

private slots:
    void weightMaps();
    void weightsOfScale();
};

void LegacyWeightMapsTest::weightMaps()
{
    ArmFixture arm;
    RyLegacyJointParam *own = arm.joints[1]->findParam(RyLegacyJointParam::Bend, arm.bones[1], 2);
    RyLegacyJointParam *copy = arm.joints[0]->findParam(RyLegacyJointParam::Bend, arm.bones[1], 2);
    const RyRef<RyWeightMap> ownMap(own->getWeights(arm.skeleton.get()));
    const RyRef<RyWeightMap> copyMap(copy->getWeights(arm.skeleton.get()));
    QCOMPARE(ownMap->getNumWeights(), arm.mesh->getNumVertices());
    const RyLegacyDeformer &deformer = arm.binding->deformer();
    int partly = 0;
    for (int v = 0; v < arm.mesh->getNumVertices(); ++v) {
        const int ring = v / ArmFixture::Around;
        const quint16 exact = quint16(std::lround(deformer.fractions(1, v).turn[2] * 65535.0));
        // Rings 15 and 30 stand on a border and belong to the lower bone.
        QCOMPARE(ownMap->getWeight(v), ring >= 15 && ring < 30 ? exact : quint16(0));
        QCOMPARE(copyMap->getWeight(v), ring < 15 ? exact : quint16(0));
        partly += exact > 0 && exact < 65535;
    }
    QVERIFY(partly > 5);
    QVERIFY(ownMap->getWeight(arm.vertex(25, 0)) == 65535);
    arm.changeBoth<RyLegacyBendParam>(1, 2, [](RyLegacyBendParam *bend) { bend->setApplyAngles(false); });
    QCOMPARE(own->getWeights(arm.skeleton.get())->getNumAffected(), 15 * ArmFixture::Around);
    QCOMPARE(copy->getWeights(arm.skeleton.get())->getNumAffected(), 0);
    own->setDriver(nullptr);
    QCOMPARE(own->getWeights(arm.skeleton.get())->getNumAffected(), 0);
}

void LegacyWeightMapsTest::weightsOfScale()
{
    ArmFixture arm;
    auto *p = qobject_cast<RyLegacySmoothScale *>(arm.joints[1]->findParam("p"));
    auto *q = qobject_cast<RyLegacySmoothScale *>(arm.joints[0]->findParam("q"));
    p->setHiStart(-6);
    p->setHiEnd(4);
    p->setApplyZones(true);
    const RyRef<RyWeightMap> ofP(p->getWeights(arm.skeleton.get()));
    const RyRef<RyWeightMap> ofQ(q->getWeights(arm.skeleton.get()));
    const RyLegacyDeformer &deformer = arm.binding->deformer();
    int partly = 0;
    for (int v = 0; v < arm.mesh->getNumVertices(); ++v) {
        const int ring = v / ArmFixture::Around;
        const double n = deformer.fractions(1, v).scale;
        QCOMPARE(ofP->getWeight(v), quint16(ring >= 15 && ring < 30 ? std::lround((1 - n) * 65535) : 0));
        QCOMPARE(ofQ->getWeight(v), quint16(ring < 15 ? std::lround(n * 65535) : 0));
        partly += n > 0 && n < 1;
    }
    QVERIFY(partly > 5);
}

RY_TEST(LegacyWeightMapsTest)
#include "tst_legacyWeightMaps.moc"
