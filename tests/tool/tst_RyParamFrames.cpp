#include "support/RyNear.h"
#include "support/RyTest.h"

#include "RyParamTruth.h"

#include "pluginsource/RyJointTools/tool/handles/RyHandleFrame.h"
#include "pluginsource/RyJointTools/tool/handles/RyParamSpace.h"
#include "rycore/parametric/RyLegacyJoint.h"

static constexpr float tolerance = 2e-3f;

namespace {

/// The arm's first parameter, with a turned and uneven sphere, on a figure of some look.
struct Fixture
{
    explicit Fixture(RyFigureLook look)
    {
        if (look != RyFigureLook::Plain)
            doll.makeUntidy();
        doll.makeJoints();
        ryMakeLook(doll, look);
        param = doll.joint(doll.lArm)->params().front();
        const float controls[10] = {21, 116, 2, 30, -20, 75, 6, 1, 0.5f, 1.4f};
        for (size_t i = 0; i < 10; ++i)
            param->getStaticSphere()->controls()[i]->setValue(controls[i]);
        matrix = param->getStaticMatrix();
        space = RyParamSpace::of(*param, *doll.lArm);
    }
    RyParamTruth truth() const { return {*doll.lArm}; }

    ParametricScene doll;
    RyLegacyJointParam *param;
    RyMatrix4 matrix;
    RyParamSpace space;
};

/// A ray that hits a place from somewhere aside.
RyLine3 rayThrough(const RyVec3 &place)
{
    return RyLine3(place + RyVec3(60, 130, 200), place);
}

} // namespace

/// Where handles of a joint parameter stand, and how far along their lines and planes a ray hits them.
class RyParamFramesTest : public QObject
{
    Q_OBJECT

private slots:
    void sphere_data() { ryAddFigureLooks(); }
    void sphere();
    void sphereArrows_data() { ryAddFigureLooks(); }
    void sphereArrows();
    void zones_data() { ryAddFigureLooks(); }
    void zones();
    void angles_data() { ryAddFigureLooks(); }
    void angles();
    void diagonal();
    void wayAlongTheDiagonal();
    void wayAcrossAxis_data() { ryAddFigureLooks(); }
    void wayAcrossAxis();
    void flatSphere();
};

void RyParamFramesTest::sphere()
{
    QFETCH(RyFigureLook, look);
    const Fixture f(look);
    const RyHandleFrame frame = RyHandleFrame::ofSphere(f.space, f.matrix);
    const RyVec3 center = f.truth().sphere(f.matrix, {});
    QVERIFY(ryIsNear(frame.anchor, center, tolerance));
    for (int k = 0; k < 3; ++k) {
        QVERIFY(std::abs(frame.axes[k].length() - 1.0f) < 1e-5f);
        const RyVec3 reached = f.truth().sphere(f.matrix, RyVec3::axis(k));
        QVERIFY(ryIsNear(frame.anchor + frame.axes[k] * frame.lengths[k], reached, tolerance));
        QVERIFY(ryIsNear(frame.toWorld().multVecMatrix(RyVec3::axis(k)), reached, tolerance));
    }
}

void RyParamFramesTest::sphereArrows()
{
    QFETCH(RyFigureLook, look);
    const Fixture f(look);
    const RyHandleFrame frame = RyHandleFrame::ofSphereArrows(f.space, f.matrix);
    // The radii are 6, 3 and 8.4: arrows are as long as 1 in parameter space, along the axes of the bone.
    for (int k = 0; k < 3; ++k) {
        const RyVec3 tip = f.truth().world(f.matrix.translation() + RyVec3::axis(k));
        QVERIFY(ryIsNear(frame.anchor, f.truth().world(f.matrix.translation()), tolerance));
        QVERIFY(ryIsNear(frame.anchor + frame.axes[k] * frame.lengths[k], tip, tolerance));
    }
}

void RyParamFramesTest::zones()
{
    QFETCH(RyFigureLook, look);
    const Fixture f(look);
    const RyHandleFrame frame = RyHandleFrame::ofZones(f.space);
    const RyVec3 origin = f.doll.lArm->getOrigin();
    for (int k = 0; k < 3; ++k) {
        RyVec3 value = origin;
        value[k] = 37.5f;
        const RyVec3 reached = frame.anchor + frame.axes[k] * frame.lengths[k] * (37.5f - origin[k]);
        QVERIFY(ryIsNear(reached, f.truth().world(value), 5 * tolerance));
    }
}

void RyParamFramesTest::angles()
{
    QFETCH(RyFigureLook, look);
    const Fixture f(look);
    const RyHandleFrame frame = RyHandleFrame::ofAngles(f.space);
    QVERIFY(ryIsNear(frame.anchor, f.doll.lArm->getWSPos(), tolerance));
    const RyVec3 x = f.truth().axis(0);
    const RyVec3 y = f.truth().axis(1);
    const RyVec3 z = f.truth().axis(2);
    // A ray at angle t about X is (0, sin t, -cos t), about Y (cos t, 0, sin t), about Z (cos t, sin t, 0).
    const RyVec3 zeros[3] = {-z, x, x};
    const RyVec3 quarters[3] = {y, z, y};
    for (int axis = 0; axis < 3; ++axis) {
        QVERIFY(ryIsNear(frame.angleReferences(axis).zero, zeros[axis], 1e-5f));
        QVERIFY(ryIsNear(frame.angleReferences(axis).quarter, quarters[axis], 1e-5f));
        QCOMPARE(frame.lengths[axis], 1.0f);
    }
}

void RyParamFramesTest::diagonal()
{
    const Fixture f(RyFigureLook::Untidy);
    const RyHandleFrame frame = RyHandleFrame::ofSphere(f.space, f.matrix);
    const RyVec3 diagonal = frame.diagonal();
    QVERIFY(std::abs(diagonal.length() - 1.0f) < 1e-5f);
    for (int k = 0; k < 3; ++k)
        QVERIFY(std::abs(diagonal.dot(frame.axes[k]) - float(std::sqrt(1.0 / 3.0))) < 1e-5f);
}

void RyParamFramesTest::wayAlongTheDiagonal()
{
    const Fixture f(RyFigureLook::Untidy);
    const RyHandleFrame frame = RyHandleFrame::ofSphere(f.space, f.matrix);
    for (const float way : {-4.0f, 0.0f, 9.0f}) {
        const RyVec3 place = frame.anchor + frame.diagonal() * way;
        QVERIFY(ryIsNear(frame.wayAlong(frame.diagonal(), rayThrough(place)), frame.diagonal() * way, tolerance));
    }
}

void RyParamFramesTest::wayAcrossAxis()
{
    QFETCH(RyFigureLook, look);
    const Fixture f(look);
    const RyHandleFrame frame = RyHandleFrame::ofSphere(f.space, f.matrix);
    // On the ring about an axis, which lies in the plane of the two others however they are sheared.
    for (int axis = 0; axis < 3; ++axis) {
        RyVec3 onRing;
        onRing[(axis + 1) % 3] = 0.6f;
        onRing[(axis + 2) % 3] = -0.8f;
        const RyVec3 place = f.truth().sphere(f.matrix, onRing);
        QVERIFY(ryIsNear(frame.wayAcrossAxis(axis, rayThrough(place)), place - frame.anchor, 2 * tolerance));
    }
}

void RyParamFramesTest::flatSphere()
{
    Fixture f(RyFigureLook::Untidy);
    f.param->getStaticSphere()->getScaleControl()->setValue(0.0f);
    const RyHandleFrame frame = RyHandleFrame::ofSphere(f.space, f.param->getStaticMatrix());
    const RyHandleFrame arrows = RyHandleFrame::ofSphereArrows(f.space, f.param->getStaticMatrix());
    for (int k = 0; k < 3; ++k) {
        QCOMPARE(frame.lengths[k], 0.0f);
        QCOMPARE(frame.axes[k], RyVec3());
        QCOMPARE(arrows.lengths[k], 0.0f);
        QVERIFY(ryIsNear(arrows.axes[k], RyParamTruth{*f.doll.lArm}.axis(k), 1e-4f));
    }
    QVERIFY(ryIsNear(frame.anchor, f.truth().world(f.matrix.translation()), tolerance));
}

RY_TEST(RyParamFramesTest)

#include "tst_RyParamFrames.moc"
