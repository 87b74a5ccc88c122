#include "support/RyNear.h"
#include "support/RyTest.h"

#include "RyParamStage.h"

using Primitive = RyGLRecorder::Primitive;

static constexpr float tolerance = 2e-2f; // centimetres, at 100 from what single precision counts from

namespace {

constexpr double flagWidth = 0.03490658;

struct Ray
{
    int id;
    double angle;
    double flagAngle;
};

std::vector<Ray> raysOf(const RyLegacyBendParam &param)
{
    const auto a = double(param.getStaticA());
    const auto b = double(param.getDynamicB());
    const auto c = double(param.getDynamicC());
    const auto d = double(param.getStaticD());
    return {{30, b, b - flagWidth}, {31, c, c + flagWidth}, {29, a, a + flagWidth}, {32, d, d - flagWidth}};
}

/// Along the bone axes, which turns alone have turned.
RyVec3 placeAt(const RyParamTruth &truth, int axis, double angle, double radius)
{
    const auto sine = float(radius * std::sin(angle));
    const auto cosine = float(radius * std::cos(angle));
    const RyVec3 ray = axis == 0   ? RyVec3(0, sine, -cosine)
                       : axis == 1 ? RyVec3(cosine, 0, sine)
                                   : RyVec3(cosine, sine, 0);
    return truth.driver.getWSPos() + truth.axis(0) * ray.x + truth.axis(1) * ray.y + truth.axis(2) * ray.z;
}

} // namespace

/// The four rays of a bend.
class RyAngleDrawingTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void rays_data();
    void rays();
    void anglesOfANewJoint();
    void orderAndColors();
    void stateWhileDrawn();
    void flags();
    void hovered();
    void copyOnTheParentsJoint();
};

void RyAngleDrawingTest::initTestCase()
{
    if (!RyDrawingStage::hasGL())
        QSKIP("no OpenGL here");
}

void RyAngleDrawingTest::rays_data()
{
    QTest::addColumn<RyFigureLook>("look");
    QTest::addColumn<int>("axis");
    for (int axis = 0; axis < 3; ++axis) {
        QTest::addRow("%d, as made", axis) << RyFigureLook::Plain << axis;
        QTest::addRow("%d, posed and turned", axis) << RyFigureLook::Untidy << axis;
        QTest::addRow("%d, scaled unevenly", axis) << RyFigureLook::Uneven << axis;
        QTest::addRow("%d, mirrored", axis) << RyFigureLook::Mirrored << axis;
    }
}

void RyAngleDrawingTest::rays()
{
    QFETCH(RyFigureLook, look);
    QFETCH(int, axis);
    RyParamStage stage(look);
    RyLegacyBendParam &bend = stage.takeBend();
    bend.setAxis(axis);
    QCOMPARE(bend.getAxis(), axis);
    const auto recording = stage.draw(RyDrawingStage::PickPass);
    for (const Ray &ray : raysOf(bend)) {
        const auto parts = recording->ofId(ray.id);
        QCOMPARE(parts.size(), size_t(2));
        QCOMPARE(parts[0].mode, GLenum(GL_LINES));
        QCOMPARE(parts[0].vertices.size(), size_t(2));
        QVERIFY(ryIsNear(stage.world(parts[0], 0), stage.doll.lArm->getWSPos(), tolerance));
        QVERIFY(ryIsNear(stage.world(parts[0], 1), placeAt(stage.truth(), axis, ray.angle, 100), tolerance));
        QCOMPARE(parts[1].mode, GLenum(GL_TRIANGLES));
        QCOMPARE(parts[1].vertices.size(), size_t(3));
        QVERIFY(ryIsNear(stage.world(parts[1], 0), placeAt(stage.truth(), axis, ray.angle, 97), tolerance));
        QVERIFY(ryIsNear(stage.world(parts[1], 1), placeAt(stage.truth(), axis, ray.flagAngle, 97), tolerance));
        QVERIFY(ryIsNear(stage.world(parts[1], 2), placeAt(stage.truth(), axis, ray.angle, 94), tolerance));
    }
}

void RyAngleDrawingTest::anglesOfANewJoint()
{
    RyParamStage stage;
    stage.select(stage.doll.rArm);
    for (RyLegacyJointParam *param : stage.doll.joint(stage.doll.rArm)->params()) {
        const auto *bend = qobject_cast<RyLegacyBendParam *>(param);
        if (!bend || bend->getDriver() != stage.doll.rArm)
            continue;
        stage.tool->setParam(param);
        const auto recording = stage.draw(RyDrawingStage::PickPass);
        const RyParamTruth truth{*stage.doll.rArm};
        for (const Ray &ray : raysOf(*bend))
            QVERIFY(ryIsNear(stage.world(recording->ofId(ray.id).at(0), 1),
                             placeAt(truth, bend->getAxis(), ray.angle, 100), tolerance));
        // The dynamic rays embrace the bone, the static ones do not.
        const RyVec3 along = (truth.driver.getWSEndPoint() - truth.driver.getWSPos()).normalized();
        for (const Ray &ray : raysOf(*bend)) {
            const RyVec3 way = placeAt(truth, bend->getAxis(), ray.angle, 1) - truth.driver.getWSPos();
            QCOMPARE(way.dot(along) > 0.3f, ray.id == 30 || ray.id == 31);
        }
    }
}

void RyAngleDrawingTest::orderAndColors()
{
    RyParamStage stage;
    stage.takeBend().setApplyMatrices(false);
    QCOMPARE(stage.drawnIds(), QList<int>({30, 31, 29, 32}));
    const auto recording = stage.draw();
    QCOMPARE(recording->primitives.size(), size_t(8));
    for (size_t i = 0; i < 8; ++i)
        QCOMPARE(recording->primitives[i].color(), i < 4 ? RyParamStage::dynamicColor() : RyParamStage::staticColor());
}

void RyAngleDrawingTest::stateWhileDrawn()
{
    RyParamStage stage;
    stage.takeBend().setApplyMatrices(false);
    for (const int pass : {3, int(RyDrawingStage::PickPass)}) {
        glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
        const auto recording = stage.draw(pass);
        RyDrawingStage::setCommonState();
        QCOMPARE(recording->primitives.size(), size_t(8));
        for (const Primitive &primitive : recording->primitives) {
            QVERIFY(!primitive.lighting && !primitive.depthTest);
            QCOMPARE(primitive.polygonMode, GLenum(GL_FILL));
        }
    }
}

void RyAngleDrawingTest::flags()
{
    RyParamStage stage;
    RyLegacyBendParam &bend = stage.takeBend();
    bend.setApplyMatrices(false);
    stage.tool->setShowManipulators(false); // hides no rays
    const QList<int> all{30, 31, 29, 32};
    QCOMPARE(stage.drawnIds(), all);
    stage.tool->setAngleVis(false);
    QCOMPARE(stage.drawnIds(), QList<int>());
    stage.tool->setAngleVis(true);
    bend.setApplyAngles(false);
    QCOMPARE(stage.drawnIds(), QList<int>());
    bend.setApplyAngles(true);
    QCOMPARE(stage.drawnIds(), all);
}

void RyAngleDrawingTest::hovered()
{
    RyParamStage stage;
    stage.tool->setSelectedColor(QColor(10, 0, 200));
    stage.takeBend();
    for (int id = 29; id <= 32; ++id) {
        stage.hover(id);
        const auto selected = stage.draw()->ofColor(rgbFloats(10, 0, 200));
        const auto picked = stage.draw(RyDrawingStage::PickPass)->ofId(id);
        QCOMPARE(selected.size(), size_t(2));
        QCOMPARE(picked.size(), size_t(2));
        for (size_t i = 0; i < 2; ++i)
            QVERIFY(selected[i].vertices == picked[i].vertices);
    }
}

/// A parameter about the hand that stands on the arm's joint is drawn at the hand.
void RyAngleDrawingTest::copyOnTheParentsJoint()
{
    RyParamStage stage;
    RyLegacyBendParam *copy = nullptr;
    for (RyLegacyJointParam *param : stage.doll.joint(stage.doll.lArm)->params()) {
        if (param->getDriver() == stage.doll.lHand && param->type() == RyLegacyJointParam::Bend)
            copy = qobject_cast<RyLegacyBendParam *>(param);
    }
    QVERIFY(copy);
    stage.tool->setParam(copy);
    const auto recording = stage.draw(RyDrawingStage::PickPass);
    const RyParamTruth truth{*stage.doll.lHand};
    for (const Ray &ray : raysOf(*copy)) {
        QVERIFY(ryIsNear(stage.world(recording->ofId(ray.id).at(0), 0), stage.doll.lHand->getWSPos(), tolerance));
        QVERIFY(ryIsNear(stage.world(recording->ofId(ray.id).at(0), 1), placeAt(truth, copy->getAxis(), ray.angle, 100),
                         tolerance));
    }
}

RY_TEST(RyAngleDrawingTest)

#include "tst_RyAngleDrawing.moc"
