#include "support/RyTest.h"

#include "ParametricScene.h"

#include "rycore/figure/RyLegacySpheres.h"
#include "support/RyNear.h"

#include <QCoreApplication>

namespace {

RyVec3 inSpaceOf(const RyBone *bone, const RyVec3 &point)
{
    return bone->getOrientation().inverse().multVec(point - bone->getOrigin()) + bone->getOrigin();
}

RyVec3 toFigure(const RyBone *bone, const RyVec3 &x)
{
    return bone->getOrientation().multVec(x - bone->getOrigin()) + bone->getOrigin();
}

/// The box of the bone's own tube of forty points, in its space.
RyBox3 boxOf(const ParametricScene &doll, const RyBone *bone)
{
    const std::vector<RyBone *> bones = doll.figure->getAllBones();
    const size_t first = size_t(std::find(bones.begin(), bones.end(), bone) - bones.begin()) * 40;
    RyBox3 box;
    for (size_t i = first; i < first + 40; ++i)
        box.include(inSpaceOf(bone, doll.mesh()->getPositions()[i]));
    return box;
}

} // namespace

/// Spheres put around what a bone moves.
class RyLegacySpheresTest : public QObject
{
    Q_OBJECT

    void checkSpheres(RyLegacyJointParam *param, const RyVec3 &center, float size)
    {
        for (const auto &[matrix, share] :
             {std::pair(param->getDynamicMatrix(), 0.5f), std::pair(param->getStaticMatrix(), 0.75f)}) {
            QVERIFY(ryIsNear(matrix.multVecMatrix({0, 0, 0}), center, 1e-3f));
            for (const RyVec3 &axis : {RyVec3(1, 0, 0), RyVec3(0, 1, 0), RyVec3(0, 0, -1)}) {
                const RyVec3 to = matrix.multVecMatrix(axis);
                QVERIFY(ryIsNear(to, center + axis * (size * share), 1e-3f));
            }
        }
    }

private slots:
    void goAroundTheBox()
    {
        ParametricScene doll;
        doll.makeUntidy();
        doll.makeJoints();
        RyLegacyJointParam *twist = doll.param(doll.lHand, "twistx");
        twist->getDynamicSphere()->getScaleControl()->setValue(3.0f);
        twist->getStaticSphere()->getYRotControl()->setValue(40.0f);
        RyLegacySpheres::reset(*twist, *doll.lHand);
        const RyBox3 box = boxOf(doll, doll.lHand);
        checkSpheres(twist, box.getCenter(), box.getSize());
        QCOMPARE(twist->getDynamicSphere()->getScaleControl()->getValue(), 3.0f);
        QVERIFY(twist->getStaticSphere()->getXScaleControl()->getDefaultValue() !=
                twist->getStaticSphere()->getXScaleControl()->getValue());
    }

    void inTheSpaceOfTheDriver()
    {
        ParametricScene doll;
        doll.makeUntidy();
        doll.makeJoints();
        RyLegacyJointParam *scale = doll.param(doll.lHand, "lArm_smoox");
        QVERIFY(scale && scale->getDriver() == doll.lArm);
        RyLegacySpheres::reset(*scale, *doll.lHand);
        const RyBox3 box = boxOf(doll, doll.lHand);
        checkSpheres(scale, inSpaceOf(doll.lArm, toFigure(doll.lHand, box.getCenter())), box.getSize());
    }

    void byTheLengthWithoutVertices()
    {
        ParametricScene doll;
        doll.makeUntidy();
        doll.makeJoints();
        RyLegacyJointParam *twist = doll.param(doll.lHand, "twistx");
        doll.mesh()->setFacets({});
        doll.mesh()->setPositions({});
        QVERIFY(doll.lHand->getOrientedBoundingBox().box.isEmpty());
        RyLegacySpheres::reset(*twist, *doll.lHand);
        checkSpheres(twist, doll.lHand->getOrigin(), (doll.lHand->getEndPoint() - doll.lHand->getOrigin()).length());
    }
};

RY_TEST(RyLegacySpheresTest)

#include "tst_RyLegacySpheres.moc"
