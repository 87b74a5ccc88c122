#include "support/RyTest.h"

#include "ParametricScene.h"
#include "paramTexts.h"

#include "rycore/figure/RyLegacyZoneFit.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/parametric/RyLegacyTwistParam.h"
#include "support/RyNear.h"
#include "support/checkUndo.h"

namespace {

/// A point of figure space in the space of a parameter.
RyVec3 inSpaceOf(const RyLegacyJointParam &param, const RyVec3 &point)
{
    const RyBone *driver = param.getDriver();
    return driver->getOrientation().inverse().multVec(point - driver->getOrigin()) + driver->getOrigin();
}

RyVec3 rayAt(int axis, double degrees)
{
    const float c = float(std::cos(degrees * M_PI / 180));
    const float s = float(std::sin(degrees * M_PI / 180));
    return axis == 0 ? RyVec3(0, s, -c) : axis == 1 ? RyVec3(c, 0, s) : RyVec3(c, s, 0);
}

float ramp(float value, float from, float to)
{
    const float u = std::clamp((value - from) / (to - from), 0.0f, 1.0f);
    return u * u * (3 - 2 * u);
}

/// What a smooth-scale's zones say at a point of figure space.
float zoneAt(const RyLegacyJointParam *param, const RyVec3 &point)
{
    const auto *scale = dynamic_cast<const RyLegacySmoothScale *>(param);
    const float x = inSpaceOf(*param, point)[param->getAxis()];
    return (scale->hiValid() ? 1 - ramp(x, scale->getHiStart(), scale->getHiEnd()) : 1) *
           (scale->loValid() ? ramp(x, scale->getLoEnd(), scale->getLoStart()) : 1);
}

} // namespace

/// Zones put where a bone lies.
class RyLegacyZoneFitTest : public QObject
{
    Q_OBJECT

private slots:
    void fits_data()
    {
        QTest::addColumn<RyVec3>("way");
        QTest::newRow("out") << RyVec3(20, 2, -3);
        QTest::newRow("back") << RyVec3(-20, 2, -3);
        QTest::newRow("up") << RyVec3(1, 19, 2);
        QTest::newRow("down") << RyVec3(1, -19, 2);
        QTest::newRow("ahead") << RyVec3(2, 1, 17);
        QTest::newRow("slanting") << RyVec3(-9, -11, -10);
    }
    void fits()
    {
        QFETCH(RyVec3, way);
        ParametricScene scene;
        scene.makeUntidy();
        scene.makeJoints();
        RyBone *bone = scene.lHand;
        bone->setEndPoint(bone->getOrigin() + way);
        const QStringList others{ryParamText(*scene.joint(scene.lTip)),
                                 ryParamText(*scene.joint(scene.chest)),
                                 ryParamText(*scene.joint(scene.rHand)),
                                 ryParamText(*scene.param(bone, "lTip_jointy")),
                                 ryParamText(*scene.param(bone, "lTip_smoox")),
                                 ryParamText(*scene.param(scene.lArm, "jointz")),
                                 ryParamText(*scene.param(scene.lArm, "chest_smooy"))};
        QVERIFY(RyLegacyZoneFit::fit(bone));
        QCOMPARE(
            QStringList({ryParamText(*scene.joint(scene.lTip)), ryParamText(*scene.joint(scene.chest)),
                         ryParamText(*scene.joint(scene.rHand)), ryParamText(*scene.param(bone, "lTip_jointy")),
                         ryParamText(*scene.param(bone, "lTip_smoox")), ryParamText(*scene.param(scene.lArm, "jointz")),
                         ryParamText(*scene.param(scene.lArm, "chest_smooy"))}),
            others);

        const RyVec3 direction = bone->getOrientation().inverse().multVec(way);
        const RyFaceGroup *group = scene.mesh()->findFaceGroup(QStringLiteral("lHand"));
        for (RyLegacyJointParam *param :
             {scene.param(bone, "jointy"), scene.param(bone, "jointz"), scene.param(scene.lArm, "lHand_jointy"),
              scene.param(scene.lArm, "lHand_jointz"), scene.param(bone, "twistx"),
              scene.param(scene.lArm, "lHand_twistx"), scene.param(bone, "lArm_smoox"),
              scene.param(scene.lArm, "lHand_smoox")}) {
            // All of the bone is within the inner sphere, which the outer one encloses.
            for (int i = 0; i < group->getFacets().count(); ++i) {
                for (const int vertex : scene.mesh()->getFacet(group->getFacets().getIndex(i)).vertices) {
                    const RyVec3 x = inSpaceOf(*param, scene.mesh()->getPositions()[size_t(vertex)]);
                    QVERIFY(param->getDynamicMatrix().inverse().multVecMatrix(x).length() < 1.0f);
                }
            }
            QVERIFY(ryIsNear(param->getStaticMatrix().translation(), param->getDynamicMatrix().translation(), 1e-3f));
            QVERIFY(std::abs(param->getStaticMatrix()[0][0] / param->getDynamicMatrix()[0][0] - 1.5f) < 1e-4f);
            if (const auto *bend = dynamic_cast<const RyLegacyBendParam *>(param)) {
                RyVec3 across = direction;
                across[bend->getAxis()] = 0;
                const double spread[] = {135, 45, -45, -135};
                for (size_t i = 0; i < 4; ++i) {
                    const double angle = double(bend->controllers()[i]->getValue());
                    QVERIFY(angle > -180.001 && angle < 180.001);
                    QVERIFY(ryIsNear(rayAt(bend->getAxis(), angle - spread[i]), across.normalized(), 1e-3f));
                }
                QCOMPARE(bend->controllers()[0]->getDefaultValue(), 90.0f);
                QVERIFY(bend->applyAngles() && !bend->applyMatrices());
            } else if (const auto *twist = dynamic_cast<const RyLegacyTwistParam *>(param)) {
                QVERIFY(std::abs(twist->getStart() - inSpaceOf(*param, bone->getOrigin()).x) < 1e-3f);
                QVERIFY(std::abs(twist->getEnd() - inSpaceOf(*param, bone->getEndPoint()).x) < 1e-3f);
                QVERIFY(!twist->applyBlend());
            }
        }
        // The parent's scale before the joint, the bone's behind it, half and half at the joint.
        const RyLegacyJointParam *parents = scene.param(bone, "lArm_smoox");
        const RyLegacyJointParam *bones = scene.param(scene.lArm, "lHand_smoox");
        QVERIFY(std::abs(zoneAt(parents, bone->getOrigin()) - 0.5f) < 1e-3f);
        QVERIFY(std::abs(zoneAt(bones, bone->getOrigin()) - 0.5f) < 1e-3f);
        const auto along = [&](const RyLegacyJointParam *param, float centimetres) {
            const float sign = inSpaceOf(*param, bone->getEndPoint())[param->getAxis()] >=
                                       inSpaceOf(*param, bone->getOrigin())[param->getAxis()]
                                   ? 1.0f
                                   : -1.0f;
            return bone->getOrigin() +
                   param->getDriver()->getOrientation().multVec(RyVec3::axis(param->getAxis()) * sign * centimetres);
        };
        QCOMPARE(zoneAt(parents, along(parents, -12)), 1.0f);
        QCOMPARE(zoneAt(parents, along(parents, 12)), 0.0f);
        QCOMPARE(zoneAt(bones, along(bones, -12)), 0.0f);
        QCOMPARE(zoneAt(bones, along(bones, 12)), 1.0f);
    }

    void radiusIsTheBones()
    {
        ParametricScene scene;
        scene.makeJoints();
        QVERIFY(RyLegacyZoneFit::fit(scene.lHand));
        const auto *scale = dynamic_cast<const RyLegacySmoothScale *>(scene.param(scene.lHand, "lArm_smoox"));
        const float width = scale->getHiEnd() - scale->getHiStart();
        QVERIFY(width > 2 * ParametricScene::Radius && width < 3 * ParametricScene::Radius);
        // Without a face group a quarter of the length tells.
        scene.figure->setSelectionMap(nullptr);
        QVERIFY(RyLegacyZoneFit::fit(scene.lHand));
        const float length = (scene.lHand->getEndPoint() - scene.lHand->getOrigin()).length();
        QVERIFY(std::abs(scale->getHiEnd() - scale->getHiStart() - length / 2) < 1e-3f);
    }

    void keepsWhatIsNotApplied()
    {
        ParametricScene scene;
        scene.makeUntidy();
        scene.makeJoints();
        RyLegacyJointParam *bend = scene.param(scene.chest, "jointx");
        bend->setFlags(0);
        QVERIFY(RyLegacyZoneFit::fit(scene.chest));
        QCOMPARE(bend->flags(), 0u);
        QVERIFY(bend->controllers()[0]->getValue() != 180.0f);
    }

    void bonesWithoutDirectionOrJoint()
    {
        ParametricScene scene;
        QVERIFY(!RyLegacyZoneFit::fit(nullptr));
        QVERIFY(!RyLegacyZoneFit::fit(scene.lHand));
        scene.makeJoints();
        scene.lHand->setEndPoint(scene.lHand->getOrigin());
        const float before = scene.param(scene.lHand, "jointy")->controllers()[0]->getValue();
        QVERIFY(RyLegacyZoneFit::fit(scene.lHand));
        QCOMPARE(scene.param(scene.lHand, "jointy")->controllers()[0]->getValue(), before);
        QVERIFY(!rySceneDump(*ryScene()).contains("nan") && !rySceneDump(*ryScene()).contains("inf"));
    }

    void isUndoable()
    {
        ParametricScene scene;
        scene.makeUntidy();
        scene.makeJoints();
        checkUndoInHold([&] { QVERIFY(RyLegacyZoneFit::fit(scene.rArm)); });
    }
};

RY_TEST(RyLegacyZoneFitTest)
#include "tst_RyLegacyZoneFit.moc"
