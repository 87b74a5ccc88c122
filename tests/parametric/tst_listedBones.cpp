#include "parametric/ParamArm.h"

#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyBoneListOrder.h"
#include "support/RyTest.h"

/// A pick pass lists bones in orders of its own; what moves vertices does not care.
class ListedBonesTest : public QObject
{
    Q_OBJECT

private slots:
    void deformationDoesNotLookAtTheirOrder()
    {
        const ParamArm f;
        RyObject *object = f.skeleton->getObject();
        RyLegacyJointParam *param = f.bendOf(f.arm, "elbow_jointy");
        const std::vector<RyVec3> positions = object->getDeformedPositions();
        const int affected = param->getWeights(f.skeleton.get())->getNumAffected();
        QVERIFY(affected > 0);
        const RyBoneListOrder order(RyBoneListOrder::Nothing);
        QVERIFY(f.skeleton->getAllBones().empty());
        QVERIFY(object->getDeformedPositions() == positions);
        QCOMPARE(param->getWeights(f.skeleton.get())->getNumAffected(), affected);
    }
};

RY_TEST(ListedBonesTest)
#include "tst_listedBones.moc"
