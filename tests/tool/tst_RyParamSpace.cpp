#include "support/RyNear.h"
#include "support/RyTest.h"

#include "RyParamTruth.h"

#include "pluginsource/RyJointTools/tool/handles/RyParamSpace.h"
#include "rycore/parametric/RyLegacyJoint.h"
#include "rycore/parametric/RyLegacySmoothScale.h"

static constexpr float tolerance = 2e-3f;

namespace {

struct Fixture
{
    explicit Fixture(RyFigureLook look)
    {
        if (look != RyFigureLook::Plain)
            doll.makeUntidy();
        doll.makeJoints();
        ryMakeLook(doll, look);
    }
    ParametricScene doll;
};

const RyVec3 values[] = {{0, 0, 0}, {12, 118, -3}, {30, 95, 8}, {-7, 130, 20}};

} // namespace

/// Values of a joint parameter in the world.
class RyParamSpaceTest : public QObject
{
    Q_OBJECT

private slots:
    void goesWithTheDriver_data() { ryAddFigureLooks(); }
    void goesWithTheDriver();
    void axesAreTurnedOnly_data() { ryAddFigureLooks(); }
    void axesAreTurnedOnly();
    void spheres_data() { ryAddFigureLooks(); }
    void spheres();
    void isTheDriversNotTheNodes();
    void nodeStandsForAGoneDriver();
};

void RyParamSpaceTest::goesWithTheDriver()
{
    QFETCH(RyFigureLook, look);
    Fixture fixture(look);
    for (RyBone *bone : fixture.doll.figure->getAllBones()) {
        for (const RyLegacyJointParam *param : fixture.doll.joint(bone)->params()) {
            const RyParamSpace space = RyParamSpace::of(*param, *bone);
            const RyParamTruth truth{*param->getDriver()};
            QCOMPARE(space.origin, param->getDriver()->getOrigin());
            for (const RyVec3 &value : values)
                QVERIFY2(ryIsNear(space.mapPoint(value), truth.world(value), tolerance), qPrintable(param->getName()));
        }
    }
}

void RyParamSpaceTest::axesAreTurnedOnly()
{
    QFETCH(RyFigureLook, look);
    Fixture fixture(look);
    for (RyBone *bone : fixture.doll.figure->getAllBones()) {
        const RyParamTruth truth{*bone};
        const RyParamSpace space = RyParamSpace::of(*fixture.doll.joint(bone)->params().front(), *bone);
        for (int k = 0; k < 3; ++k) {
            QVERIFY2(ryIsNear(space.axes[k], truth.axis(k), 1e-5f), qPrintable(bone->getName()));
            QVERIFY(std::abs(space.axes[k].length() - 1.0f) < 1e-5f);
        }
    }
}

void RyParamSpaceTest::spheres()
{
    QFETCH(RyFigureLook, look);
    Fixture fixture(look);
    RyBone *bone = fixture.doll.lArm;
    const RyLegacyJointParam &param = *fixture.doll.joint(bone)->params().front();
    const float controls[10] = {14, 119, 2, 30, -20, 75, 6, 1, 0.5f, 1.4f};
    for (size_t i = 0; i < 10; ++i)
        param.getDynamicSphere()->controls()[i]->setValue(controls[i]);
    const RyMatrix4 matrix = param.getDynamicMatrix();
    const RyMatrix4 toWorld = RyParamSpace::of(param, *bone).sphereToWorld(matrix);
    for (const RyVec3 &unit : {RyVec3(), RyVec3(1, 0, 0), RyVec3(0, -1, 0), RyVec3(0, 0, 1), RyVec3(0.6f, 0, -0.8f)})
        QVERIFY(ryIsNear(toWorld.multVecMatrix(unit), RyParamTruth{*bone}.sphere(matrix, unit), tolerance));
}

void RyParamSpaceTest::isTheDriversNotTheNodes()
{
    Fixture fixture(RyFigureLook::Untidy);
    RyBone *arm = fixture.doll.lArm;
    RyBone *hand = fixture.doll.lHand;
    const RyLegacyJointParam *copy = nullptr; // on the arm's joint, about the hand
    for (const RyLegacyJointParam *param : fixture.doll.joint(arm)->params()) {
        if (param->getDriver() == hand && param->type() == RyLegacyJointParam::Bend)
            copy = param;
    }
    QVERIFY(copy);
    const RyParamSpace space = RyParamSpace::of(*copy, *arm);
    QVERIFY(ryIsNear(space.toWorld.translation(), hand->getWSPos(), tolerance));
    QVERIFY(!ryIsNear(space.toWorld.translation(), arm->getWSPos(), 1.0f));
}

void RyParamSpaceTest::nodeStandsForAGoneDriver()
{
    Fixture fixture(RyFigureLook::Untidy);
    RyBone *hand = fixture.doll.lHand;
    RyLegacyJointParam *smooth =
        fixture.doll.joint(hand)->findParam(RyLegacyJointParam::SmoothScale, fixture.doll.lArm, -1);
    QVERIFY(smooth);
    const RyVec3 value(50, 110, 2);
    QVERIFY(ryIsNear(RyParamSpace::of(*smooth, *hand).mapPoint(value), RyParamTruth{*fixture.doll.lArm}.world(value),
                     tolerance));
    smooth->setDriver(nullptr);
    QVERIFY(ryIsNear(RyParamSpace::of(*smooth, *hand).mapPoint(value), RyParamTruth{*hand}.world(value), tolerance));
}

RY_TEST(RyParamSpaceTest)

#include "tst_RyParamSpace.moc"
