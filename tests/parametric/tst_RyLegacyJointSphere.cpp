#include "parametric/ParamArm.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/math/RyMatrix4Utilities.h"
#include "support/RyNear.h"
#include "support/RyTest.h"

namespace {

RyMatrix4 sphereOf(const RyVec3 &scale, const RyVec3 &degrees, const RyVec3 &centre)
{
    RyMatrix4 matrix;
    matrix.scale(scale);
    matrix.rotate(RyQuat::fromEulerXYZ(degrees));
    matrix.translate(centre);
    return matrix;
}

/// The largest difference of images of points around the origin.
float apart(const RyMatrix4 &a, const RyMatrix4 &b)
{
    float most = 0;
    for (const RyVec3 &point : {RyVec3(), RyVec3(1, 0, 0), RyVec3(0, 1, 0), RyVec3(0, 0, 1), RyVec3(-1, 1, 2)})
        most = std::max(most, (a.multVecMatrix(point) - b.multVecMatrix(point)).length());
    return most;
}

} // namespace

/// Ten controls and the matrix that they make.
class RyLegacyJointSphereTest : public QObject
{
    Q_OBJECT

private slots:
    void matrixScalesThenTurnsThenMoves()
    {
        const RyLegacyBendParam bend;
        const RyLegacyJointSphere &sphere = *bend.getDynamicSphere();
        sphere.getScaleControl()->setValue(2);
        sphere.getXScaleControl()->setValue(3);
        sphere.getZRotControl()->setValue(90);
        sphere.getYTransControl()->setValue(7);
        // A right-handed turn about Z leads X to Y.
        QVERIFY(ryIsNear(sphere.getMatrix().multVecMatrix({1, 0, 0}), {0, 13, 0}, 1e-5f));
        QVERIFY(ryIsNear(sphere.getMatrix().multVecMatrix({0, 0, 1}), {0, 7, 2}, 1e-5f));
        QCOMPARE(bend.getDynamicMatrix(), sphere.getMatrix());
        QCOMPARE(bend.getStaticMatrix(), RyMatrix4());
    }

    void writtenMatrixIsReadBack()
    {
        RyLegacyBendParam bend;
        const RyMatrix4 dynamicMatrix = sphereOf({2, 3, 0.5f}, {20, -130, 75}, {4, -50, 6});
        const RyMatrix4 staticMatrix = sphereOf({7, 4, 5}, {-10, 80, 5}, {1, 2, 3});
        bend.setDynamicMatrix(dynamicMatrix);
        QVERIFY(apart(bend.getDynamicMatrix(), dynamicMatrix) < 1e-4f);
        QCOMPARE(bend.getStaticMatrix(), RyMatrix4());
        bend.setStaticMatrix(staticMatrix);
        QVERIFY(apart(bend.getDynamicMatrix(), dynamicMatrix) < 1e-4f);
        QVERIFY(apart(bend.getStaticMatrix(), staticMatrix) < 1e-4f);
        for (const RyFloatProperty *control : bend.getStaticSphere()->controls())
            QVERIFY(control->getDefaultValue() == 0 || control->getDefaultValue() == 1);
    }

    void defaultsFollowWhereAsked()
    {
        RyLegacyBendParam bend;
        const RyMatrix4 dynamicMatrix = sphereOf({2, 3, 0.5f}, {20, 30, 75}, {4, -50, 6});
        const RyMatrix4 staticMatrix = sphereOf({7, 4, 5}, {-10, 80, 5}, {1, 2, 3});
        bend.setMatrices(dynamicMatrix, staticMatrix, true);
        for (const RyLegacyJointSphere *sphere : {bend.getDynamicSphere(), bend.getStaticSphere()}) {
            for (const RyFloatProperty *control : sphere->controls())
                QCOMPARE(control->getDefaultValue(), control->getValue());
        }
        bend.setMatrices(staticMatrix, dynamicMatrix, false);
        QVERIFY(apart(bend.getDynamicMatrix(), staticMatrix) < 1e-4f);
        QVERIFY(apart(bend.getStaticMatrix(), dynamicMatrix) < 1e-4f);
        QVERIFY(qAbs(bend.getDynamicSphere()->getYTransControl()->getDefaultValue() + 50) < 1e-4f);
        QVERIFY(qAbs(bend.getStaticSphere()->getYScaleControl()->getDefaultValue() - 4) < 1e-4f);
    }

    void generalScaleStays()
    {
        RyLegacyBendParam bend;
        const RyLegacyJointSphere &sphere = *bend.getDynamicSphere();
        for (const float general : {4.0f, 0.01f, -2.0f}) {
            sphere.getScaleControl()->setValue(general);
            const RyMatrix4 matrix = sphereOf({2, 3, 0.5f}, {20, -130, 75}, {4, -50, 6});
            bend.setDynamicMatrix(matrix);
            QCOMPARE(sphere.getScaleControl()->getValue(), general);
            QVERIFY(qAbs(sphere.getYScaleControl()->getValue() * general - 3) < 1e-4f);
            QVERIFY(apart(bend.getDynamicMatrix(), matrix) < 1e-4f);
        }
    }

    void generalScaleOfZeroBecomesOne()
    {
        RyLegacyBendParam bend;
        const RyLegacyJointSphere &sphere = *bend.getStaticSphere();
        sphere.getScaleControl()->setValue(0);
        const RyMatrix4 matrix = sphereOf({2, 3, 0.5f}, {20, 30, 75}, {4, -50, 6});
        bend.setStaticMatrix(matrix);
        QCOMPARE(sphere.getScaleControl()->getValue(), 1.0f);
        QVERIFY(apart(bend.getStaticMatrix(), matrix) < 1e-4f);
    }

    void linkedControlsTakePartAsResults()
    {
        const ParamArm f;
        RyLegacyBendParam *bend = f.bendOf(f.elbow, "jointy");
        RyFloatProperty *controller = f.hand->getYTransControl();
        QVERIFY(RyERCLink::create(controller, bend->getDynamicSphere()->getXTransControl()));
        controller->setValue(controller->getDefaultValue() + 5);
        const RyMatrix4 matrix = sphereOf({2, 3, 0.5f}, {20, 30, 75}, {4, -50, 6});
        bend->setDynamicMatrix(matrix);
        QVERIFY(apart(bend->getDynamicMatrix(), matrix) < 1e-4f);
        QVERIFY(qAbs(bend->getDynamicSphere()->getXTransControl()->getRawValue() + 1) < 1e-4f);
    }

    void controlsAreNamedAfterTheirSphere()
    {
        const RyLegacyTwistParam twist;
        QCOMPARE(twist.getDynamicSphere()->getXTransControl()->getName(), QString("dynamic_xtran"));
        QCOMPARE(twist.getStaticSphere()->getZScaleControl()->getName(), QString("static_zscale"));
        QCOMPARE(twist.getStaticSphere()->getParam(), static_cast<const RyLegacyJointParam *>(&twist));
    }
};

RY_TEST(RyLegacyJointSphereTest)
#include "tst_RyLegacyJointSphere.moc"
