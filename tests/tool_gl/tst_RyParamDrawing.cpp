#include "support/RyTest.h"

#include "RyParamStage.h"

using Primitive = RyGLRecorder::Primitive;

namespace {

const QList<int> sphereIds{5,  6,  7,  8,  9,  10, 17, 20, 18, 21, 19, 22, 11,
                           12, 13, 40, 23, 26, 24, 27, 25, 28, 14, 15, 16, 39};

/// Each kind of parameter in turn, made the current one.
std::vector<RyLegacyJointParam *> paramsOf(RyParamStage &stage)
{
    return {&stage.takeBend(), &stage.takeTwist(), &stage.takeSmooth()};
}

bool isFinite(const RyVec3 &v)
{
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

/// All that the tool gives to GL is a number, and GL takes it.
bool isSound(RyParamStage &stage)
{
    for (const int pass : {3, int(RyDrawingStage::PickPass)}) {
        const auto recording = stage.draw(pass);
        for (const Primitive &primitive : recording->primitives) {
            if (!std::all_of(primitive.vertices.begin(), primitive.vertices.end(), isFinite))
                return false;
        }
    }
    return glGetError() == GL_NO_ERROR;
}

} // namespace

/// What is drawn for a parameter as a whole: which handles in which order, what the pick pass holds, and what the
/// context is like before and after.
class RyParamDrawingTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void handlesOfEachKind();
    void everyHandleOnce();
    void pickPassHoldsIdsAlone();
    void pointsWithoutParameter();
    void orderOfAll();
    void lineWidth();
    void hobbleChangesNothing();
    void stateIsLeftAsItWas();
    void colorsGoWithVertices();
    void absurdValues_data();
    void absurdValues();
    void paramLeavesItsJoint();
    void picksEndToEnd();
};

void RyParamDrawingTest::initTestCase()
{
    if (!RyDrawingStage::hasGL())
        QSKIP("no OpenGL here");
}

void RyParamDrawingTest::handlesOfEachKind()
{
    RyParamStage stage;
    stage.takeBend();
    QCOMPARE(stage.drawnIds(), sphereIds + QList<int>({30, 31, 29, 32}));
    stage.takeTwist();
    QCOMPARE(stage.drawnIds(), sphereIds + QList<int>({33, 34}));
    stage.takeSmooth();
    QCOMPARE(stage.drawnIds(), sphereIds + QList<int>({35, 36, 38, 37}));
}

void RyParamDrawingTest::everyHandleOnce()
{
    RyParamStage stage;
    QSet<int> ids;
    for (RyLegacyJointParam *param : paramsOf(stage)) {
        stage.tool->setParam(param);
        for (const int id : stage.drawnIds())
            ids.insert(id);
    }
    QCOMPARE(ids.size(), 36);
    for (int id = 5; id <= 40; ++id)
        QVERIFY(ids.contains(id));
}

void RyParamDrawingTest::pickPassHoldsIdsAlone()
{
    RyParamStage stage;
    stage.tool->setSphereDrawing(2);
    stage.tool->setDrawMeshBoundaries(true);
    stage.tool->setWeightVis(true);
    stage.hover(6); // a highlight is for the eye
    for (RyLegacyJointParam *param : paramsOf(stage)) {
        stage.tool->setParam(param);
        const auto recording = stage.draw(RyDrawingStage::PickPass);
        QVERIFY(recording->primitives.size() > 30);
        for (const Primitive &primitive : recording->primitives) {
            for (const auto &color : primitive.colors) {
                QCOMPARE(color, rgbBytes(int(color.r), 0, 128));
                QVERIFY(color.r >= 5 && color.r <= 40);
                QCOMPARE(color, primitive.color());
            }
        }
    }
}

void RyParamDrawingTest::pointsWithoutParameter()
{
    RyParamStage stage;
    const QList<int> points{41, 42, 43, 1, 44, 45, 46, 2};
    stage.tool->setParam(nullptr);
    stage.viewport->getCamera()->lookAt({60, 160, 320}, {20, 110, 0});
    QCOMPARE(stage.drawnIds(), points);
    for (RyLegacyJointParam *param : paramsOf(stage)) {
        stage.tool->setParam(param);
        for (const int id : stage.drawnIds())
            QVERIFY2(id >= 5 && id <= 40, qPrintable(QString::number(id)));
    }
    stage.select(stage.doll.lHand);
    stage.tool->setParam(nullptr);
    QCOMPARE(stage.drawnIds(), points);
}

/// Bones, weights, handles, boundary.
void RyParamDrawingTest::orderOfAll()
{
    RyParamStage stage;
    stage.takeBend();
    stage.tool->setWeightVis(true);
    stage.tool->setBoneDrawMode(RyJointEditorTool::EntireFigure);
    stage.tool->setDrawMeshBoundaries(true);
    stage.tool->setBoundaryColor(QColor(9, 9, 9));
    const auto recording = stage.draw();
    const auto boundary = recording->ofColor(rgbaFloats(9, 9, 9, double(0.4f)));
    QCOMPARE(boundary.size(), size_t(1));
    const auto bodies = RyDrawingStage::bodies(*recording);
    QVERIFY(bodies.size() >= 2);
    const auto handles = recording->ofColor(RyParamStage::dynamicColor());
    // Weights go into a picture of their own, and then over what is there.
    QVERIFY(!recording->elements.empty());
    const auto isLaying = [](const RyGLRecorder::Call &call) { return call.name == "glRectf"; };
    const auto laying = std::find_if(recording->calls.begin(), recording->calls.end(), isLaying);
    QVERIFY(laying != recording->calls.end());
    QCOMPARE(recording->count("glRectf"), 1);
    const int layingCall = int(laying - recording->calls.begin());
    QVERIFY(bodies.back().firstCall < recording->elements.front().firstCall);
    QVERIFY(recording->elements.back().firstCall <= layingCall);
    for (const auto &color : {RyParamStage::dynamicColor(), RyParamStage::staticColor()})
        QVERIFY(layingCall < recording->ofColor(color).front().firstCall);
    QVERIFY(recording->ofColor(RyParamStage::staticColor()).back().firstCall < boundary[0].firstCall);
}

void RyParamDrawingTest::lineWidth()
{
    RyParamStage stage;
    for (RyLegacyJointParam *param : paramsOf(stage)) {
        stage.tool->setParam(param);
        for (const float width : {3.0f, 10.0f, 14.0f}) {
            glLineWidth(width);
            const auto picked = stage.draw(RyDrawingStage::PickPass);
            for (const Primitive &primitive : picked->primitives)
                QCOMPARE(primitive.lineWidth, std::min(width, 10.0f));
            const auto drawn = stage.draw();
            for (const Primitive &primitive : drawn->primitives)
                QCOMPARE(primitive.lineWidth, width);
        }
    }
    glLineWidth(1.0f);
}

void RyParamDrawingTest::hobbleChangesNothing()
{
    RyParamStage stage;
    for (RyLegacyJointParam *param : paramsOf(stage)) {
        stage.tool->setParam(param);
        for (const int style : {3, int(RyDrawingStage::PickPass)}) {
            stage.tool->setRestrictRotationAxes(false);
            const auto off = stage.draw(style);
            stage.tool->setRestrictRotationAxes(true);
            const auto on = stage.draw(style);
            QCOMPARE(on->calls.size(), off->calls.size());
            for (size_t i = 0; i < on->calls.size(); ++i) {
                QCOMPARE(on->calls[i].name, off->calls[i].name);
                QCOMPARE(on->calls[i].arguments, off->calls[i].arguments);
            }
        }
    }
}

void RyParamDrawingTest::stateIsLeftAsItWas()
{
    RyParamStage stage;
    for (RyLegacyJointParam *param : paramsOf(stage)) {
        stage.tool->setParam(param);
        for (const int sphereStyle : {0, 1, 2}) {
            stage.tool->setSphereDrawing(sphereStyle);
            stage.tool->setHandleDrawing(sphereStyle);
            for (const int style : {3, int(RyDrawingStage::PickPass)}) {
                stage.draw(style); // loads the matrices that the state is compared with
                RyDrawingStage::setUncommonState();
                const QVector<float> before = RyDrawingStage::glState();
                stage.draw(style);
                QCOMPARE(RyDrawingStage::glState(), before);
                QCOMPARE(glGetError(), GLenum(GL_NO_ERROR));
            }
        }
    }
    RyDrawingStage::setCommonState();
}

/// A colour that is set aside has the driver compile another program.
void RyParamDrawingTest::colorsGoWithVertices()
{
    RyParamStage stage;
    stage.tool->setSphereDrawing(2);
    for (RyLegacyJointParam *param : paramsOf(stage)) {
        stage.tool->setParam(param);
        const auto recording = stage.draw();
        bool isWithin = false;
        for (const auto &call : recording->calls) {
            isWithin = call.name == "glBegin" || (isWithin && call.name != "glEnd");
            QVERIFY(isWithin || !call.name.startsWith("glColor"));
        }
    }
}

void RyParamDrawingTest::absurdValues_data()
{
    QTest::addColumn<float>("value");
    QTest::newRow("zero") << 0.0f;
    QTest::newRow("tiny") << 1e-30f;
    QTest::newRow("huge") << 1e15f;
    QTest::newRow("below zero") << -3.0f;
    QTest::newRow("as a new zone has it") << RyLegacyTwistParam::Farthest;
}

void RyParamDrawingTest::absurdValues()
{
    QFETCH(float, value);
    for (int kind = 0; kind < 3; ++kind) {
        RyParamStage stage;
        RyLegacyJointParam *param = paramsOf(stage)[size_t(kind)];
        stage.tool->setParam(param);
        QVERIFY(isSound(stage));
        for (const RyLegacyJointSphere *sphere : {param->getDynamicSphere(), param->getStaticSphere()}) {
            sphere->getScaleControl()->setValue(value);
            QVERIFY(isSound(stage));
            sphere->getScaleControl()->setValue(5.0f);
            sphere->getYScaleControl()->setValue(value);
            QVERIFY(isSound(stage));
            sphere->getXTransControl()->setValue(value);
            QVERIFY(isSound(stage));
        }
        for (RyFloatProperty *controller : param->controllers()) {
            controller->setValue(value);
            QVERIFY(isSound(stage));
        }
        stage.doll.lArm->getXScaleControl()->setValue(value);
        QVERIFY(isSound(stage));
        param->setDriver(nullptr);
        QVERIFY(isSound(stage));
        QVERIFY(!stage.drawnIds().contains(1));
    }
}

void RyParamDrawingTest::paramLeavesItsJoint()
{
    RyParamStage stage;
    RyLegacyTwistParam &twist = stage.takeTwist();
    QVERIFY(stage.drawnIds().contains(33));
    stage.doll.joint(stage.doll.lArm)->removeJointParam(&twist);
    QVERIFY(stage.drawnIds().contains(41));
    QVERIFY(!stage.drawnIds().contains(33));
}

/// Under the mouse: by the pixels of the pick pass itself.
void RyParamDrawingTest::picksEndToEnd()
{
    RyParamStage stage;
    const auto pick = [&](const RyVec3 &world) {
        return stage.viewport->Ry3DViewport::pickOnGizmo(stage.pixelOf(world));
    };
    const RyLegacyBendParam &bend = stage.takeBend();
    stage.tool->setAngleVis(false);
    stage.lookAtArm(60.0f);
    const RyMatrix4 matrix = bend.getDynamicMatrix();
    stage.tool->setMatBVis(false);
    QCOMPARE(pick(stage.truth().sphere(matrix, {0, 0, 0})), 40);
    QCOMPARE(pick(stage.truth().sphere(matrix, {1, 0, 0})), 17);
    QCOMPARE(pick(stage.truth().sphere(matrix, {0, -1, 0})), 21);
    const auto onRing = float(1.01 * std::sqrt(0.5));
    QCOMPARE(pick(stage.truth().sphere(matrix, {onRing, onRing, 0})), 7);
    stage.tool->setMatBVis(true);
    stage.tool->setMatAVis(false);
    QCOMPARE(pick(stage.truth().sphere(bend.getStaticMatrix(), {0, onRing, onRing})), 8);
    const RyLegacyTwistParam &twist = stage.takeTwist();
    stage.tool->setMatBVis(false);
    RyVec3 value = stage.doll.lArm->getOrigin();
    value[twist.getAxis()] = twist.getEnd();
    QCOMPARE(pick(stage.truth().world(value)), 34);
}

RY_TEST(RyParamDrawingTest)

#include "tst_RyParamDrawing.moc"
