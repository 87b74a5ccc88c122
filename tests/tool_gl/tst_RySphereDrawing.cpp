#include "support/RyNear.h"
#include "support/RyTest.h"

#include "RyParamStage.h"

using Primitive = RyGLRecorder::Primitive;

static constexpr float tolerance = 1e-2f; // centimetres, at 150 from the camera in single precision

namespace {

/// One of the two spheres of the stage's parameter, with its ids.
struct Sphere
{
    RyMatrix4 matrix;
    RyGLRecorder::Color color;
    int firstRing;
    int firstArrow;
    int firstCube; // of the plus sides; those of the minus sides follow
    int generalCube;
};

std::vector<Sphere> spheresOf(const RyLegacyJointParam &param)
{
    return {{param.getDynamicMatrix(), RyParamStage::dynamicColor(), 5, 11, 17, 40},
            {param.getStaticMatrix(), RyParamStage::staticColor(), 8, 14, 23, 39}};
}

/// What a cube about a place consists of: each of its corners belongs to three sides.
void checkCube(const RyParamStage &stage, const std::vector<Primitive> &cubes, const RyVec3 &place)
{
    QCOMPARE(cubes.size(), size_t(1));
    QCOMPARE(cubes[0].mode, GLenum(GL_QUADS));
    QCOMPARE(cubes[0].vertices.size(), size_t(24));
    QVERIFY(!cubes[0].depthTest);
    const auto half = float(std::min(stage.worldSize(45, place) * 0.125, 0.5));
    const std::vector<RyVec3> drawn = stage.worldVertices(cubes[0]);
    for (int corner = 0; corner < 8; ++corner) {
        RyVec3 expected = place;
        for (int k = 0; k < 3; ++k)
            expected += stage.truth().way(RyVec3::axis(k)) * (corner & (1 << k) ? half : -half);
        QCOMPARE(std::count_if(drawn.begin(), drawn.end(),
                               [&](const RyVec3 &vertex) { return ryIsNear(vertex, expected, tolerance); }),
                 3);
    }
    // The corners of a side differ in one direction from one to the next.
    for (size_t i = 0; i < 24; ++i) {
        const RyVec3 edge = drawn[i] - drawn[i / 4 * 4 + (i + 1) % 4];
        int along = 0;
        for (int k = 0; k < 3; ++k) {
            const RyVec3 whole = stage.truth().way(RyVec3::axis(k)) * (2 * half);
            along += ryIsNear(edge, whole, tolerance) || ryIsNear(edge, -whole, tolerance);
        }
        QCOMPARE(along, 1);
    }
}

} // namespace

/// The spheres of a parameter: rings, bodies, cubes and arrows.
class RySphereDrawingTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void rings_data() { ryAddFigureLooks(); }
    void rings();
    void ringsInThePicture();
    void bodies_data();
    void bodies();
    void noBodyInThePickPass();
    void density();
    void storedDensityOfZero();
    void cubes_data() { ryAddFigureLooks(); }
    void cubes();
    void cubeStyles_data();
    void cubeStyles();
    void arrows_data() { ryAddFigureLooks(); }
    void arrows();
    void sizesFollowTheCamera();
    void eachIsShownByItsFlag();
    void hiddenManipulators();
    void nothingWhereMatricesAreNotApplied();
    void hovered();
    void handlesOutOfViewAreLeftOut();
};

void RySphereDrawingTest::initTestCase()
{
    if (!RyDrawingStage::hasGL())
        QSKIP("no OpenGL here");
}

void RySphereDrawingTest::rings()
{
    QFETCH(RyFigureLook, look);
    RyParamStage stage(look);
    const auto recording = stage.draw(RyDrawingStage::PickPass);
    for (const Sphere &sphere : spheresOf(stage.takeBend())) {
        const auto drawn = stage.draw(RyDrawingStage::PickPass);
        for (int axis = 0; axis < 3; ++axis) {
            const auto rings = drawn->ofId(sphere.firstRing + axis);
            QCOMPARE(rings.size(), size_t(1));
            QCOMPARE(rings[0].mode, GLenum(GL_LINE_LOOP));
            QVERIFY(rings[0].depthTest && !rings[0].lighting);
            QCOMPARE(rings[0].vertices.size(), size_t(60));
            for (size_t i = 0; i < 60; ++i) {
                const double turn = double(i) * M_PI / 30;
                RyVec3 unit;
                unit[(axis + 1) % 3] = float(1.01 * std::cos(turn));
                unit[(axis + 2) % 3] = float(1.01 * std::sin(turn));
                QVERIFY(ryIsNear(stage.world(rings[0], i), stage.truth().sphere(sphere.matrix, unit), tolerance));
            }
        }
    }
}

void RySphereDrawingTest::ringsInThePicture()
{
    RyParamStage stage;
    const RyLegacyBendParam &bend = stage.takeBend();
    stage.showRingsOnly();
    stage.tool->setShowManipulators(false);
    stage.tool->setAngleVis(false);
    const auto recording = stage.draw();
    QCOMPARE(recording->primitives.size(), size_t(6));
    const std::vector<Sphere> spheres = spheresOf(bend);
    for (size_t i = 0; i < 6; ++i) {
        const Primitive &ring = recording->primitives[i];
        const Sphere &sphere = spheres[i / 3];
        QCOMPARE(ring.color(), sphere.color);
        RyVec3 onRing;
        onRing[int(i % 3 + 1) % 3] = 1.01f;
        QVERIFY(ryIsNear(stage.world(ring, 0), stage.truth().sphere(sphere.matrix, onRing), tolerance));
    }
}

void RySphereDrawingTest::bodies_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<RyFigureLook>("look");
    QTest::newRow("lines") << 1 << RyFigureLook::Untidy;
    QTest::newRow("solid") << 2 << RyFigureLook::Untidy;
    QTest::newRow("lines, mirrored") << 1 << RyFigureLook::Mirrored;
    QTest::newRow("solid, scaled unevenly") << 2 << RyFigureLook::Uneven;
}

void RySphereDrawingTest::bodies()
{
    QFETCH(int, style);
    QFETCH(RyFigureLook, look);
    RyParamStage stage(look);
    stage.tool->setSphereDrawing(style);
    stage.tool->setSphereOpacity(77);
    stage.tool->setSphereLineDensity(24);
    const RyLegacyBendParam &bend = stage.takeBend();
    // Neither the hovered ring nor the context's polygon mode makes bodies look otherwise.
    stage.hover(6);
    glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
    const auto recording = stage.draw();
    RyDrawingStage::setCommonState();
    for (const Sphere &sphere : spheresOf(bend)) {
        const RyGLRecorder::Color color =
            rgbaFloats(sphere.color.r / 255, sphere.color.g / 255, sphere.color.b / 255, 77.0 / 255);
        std::vector<Primitive> body;
        for (const Primitive &primitive : recording->primitives) {
            if (primitive.color().kind == "4f" && primitive.color().isNear(color))
                body.push_back(primitive);
        }
        QVERIFY(body.size() > 10);
        float lowest = 1;
        float highest = -1;
        for (const Primitive &part : body) {
            QVERIFY(style == 1 ? part.mode == GL_LINE_LOOP || part.mode == GL_LINE_STRIP
                               : part.mode == GL_TRIANGLE_STRIP && part.polygonMode == GL_FILL);
            QVERIFY(part.depthTest && !part.depthWrites && !part.lighting);
            for (size_t i = 0; i < part.vertices.size(); ++i) {
                const RyVec3 unit = sphere.matrix.inverse().multVecMatrix(stage.truth().value(stage.world(part, i)));
                QVERIFY2(std::abs(unit.length() - 1.0f) < 5e-3f, qPrintable(QString::number(unit.length())));
                lowest = std::min(lowest, unit.x);
                highest = std::max(highest, unit.x);
            }
        }
        QVERIFY(lowest < -0.9f && highest > 0.9f);
        // Rings of a sphere come before its body, and no body before the other sphere's.
        const auto rings = recording->ofColor(sphere.color);
        QVERIFY(!rings.empty() && rings[0].firstCall < body[0].firstCall);
    }
    QVERIFY(recording->ofColor(RyParamStage::staticColor())[0].firstCall >
            recording->ofColor(RyParamStage::dynamicColor())[0].firstCall);
}

void RySphereDrawingTest::noBodyInThePickPass()
{
    RyParamStage stage;
    stage.takeBend();
    stage.showRingsOnly();
    const size_t count = stage.draw(RyDrawingStage::PickPass)->primitives.size();
    const size_t inPicture = stage.draw()->primitives.size();
    for (const int style : {1, 2}) {
        stage.tool->setSphereDrawing(style);
        QCOMPARE(stage.draw(RyDrawingStage::PickPass)->primitives.size(), count);
        QVERIFY(stage.draw()->primitives.size() > inPicture);
    }
}

void RySphereDrawingTest::density()
{
    RyParamStage stage;
    stage.takeBend();
    for (const int style : {1, 2}) {
        stage.tool->setSphereDrawing(style);
        const auto parts = [&](int density) {
            stage.tool->setSphereLineDensity(density);
            return stage.draw()->primitives.size();
        };
        QVERIFY(parts(60) > parts(10));
        stage.showRingsOnly();
        const size_t none = stage.draw()->primitives.size();
        stage.tool->setSphereDrawing(style);
        QVERIFY(parts(1) > none);
    }
}

void RySphereDrawingTest::storedDensityOfZero()
{
    const auto bodyOf = [](int stored) {
        RyParamStage stage;
        RyAppSettings(QStringLiteral("Joint Editor Tool")).setIntValue(QStringLiteral("SphereDensity"), stored);
        stage.renewTool();
        stage.tool->setSphereDrawing(1);
        stage.takeBend();
        return stage.draw()->count("glVertex3f");
    };
    QCOMPARE(bodyOf(0), bodyOf(1));
    QVERIFY(bodyOf(1) < bodyOf(12));
}

void RySphereDrawingTest::cubes()
{
    QFETCH(RyFigureLook, look);
    RyParamStage stage(look);
    const RyLegacyBendParam &bend = stage.takeBend();
    const auto recording = stage.draw(RyDrawingStage::PickPass);
    for (const Sphere &sphere : spheresOf(bend)) {
        for (int axis = 0; axis < 3; ++axis) {
            for (const int side : {0, 1}) {
                const RyVec3 unit = RyVec3::axis(axis) * (side == 0 ? 1.0f : -1.0f);
                const int id = sphere.firstCube + 3 * side + axis;
                checkCube(stage, recording->ofId(id), stage.truth().sphere(sphere.matrix, unit));
                if (QTest::currentTestFailed())
                    return;
            }
        }
        checkCube(stage, recording->ofId(sphere.generalCube), stage.truth().sphere(sphere.matrix, {}));
        if (QTest::currentTestFailed())
            return;
    }
}

void RySphereDrawingTest::cubeStyles_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<int>("mode");
    QTest::newRow("lines") << 0 << int(GL_LINE);
    QTest::newRow("solid") << 1 << int(GL_FILL);
    QTest::newRow("as the context has it") << 2 << int(GL_POINT);
}

void RySphereDrawingTest::cubeStyles()
{
    QFETCH(int, style);
    QFETCH(int, mode);
    RyParamStage stage;
    stage.takeBend();
    stage.tool->setHandleDrawing(style);
    stage.tool->setSphereDrawing(2); // sets a mode of its own
    for (const int pass : {3, int(RyDrawingStage::PickPass)}) {
        glPolygonMode(GL_FRONT_AND_BACK, GL_POINT);
        const auto recording = stage.draw(pass);
        RyDrawingStage::setCommonState();
        QCOMPARE(recording->ofMode(GL_QUADS).size(), size_t(14));
        for (const Primitive &cube : recording->ofMode(GL_QUADS))
            QCOMPARE(int(cube.polygonMode), mode);
        // Cones look as those of points do.
        QCOMPARE(recording->ofMode(GL_TRIANGLE_FAN).size(), size_t(6));
        for (const Primitive &cone : recording->ofMode(GL_TRIANGLE_FAN))
            QCOMPARE(int(cone.polygonMode), int(GL_POINT));
    }
}

void RySphereDrawingTest::arrows()
{
    QFETCH(RyFigureLook, look);
    RyParamStage stage(look);
    const RyLegacyBendParam &bend = stage.takeBend();
    const auto recording = stage.draw(RyDrawingStage::PickPass);
    for (const Sphere &sphere : spheresOf(bend)) {
        const RyVec3 center = sphere.matrix.translation();
        float least = 1e9f;
        for (int axis = 0; axis < 3; ++axis)
            least = std::min(least, (sphere.matrix.multVecMatrix(RyVec3::axis(axis)) - center).length());
        for (int axis = 0; axis < 3; ++axis) {
            const auto parts = recording->ofId(sphere.firstArrow + axis);
            QCOMPARE(parts.size(), size_t(3));
            QCOMPARE(parts[0].mode, GLenum(GL_LINES));
            const RyVec3 tip = stage.truth().world(center + RyVec3::axis(axis) * (least / 3));
            QVERIFY(ryIsNear(stage.world(parts[0], 0), stage.truth().world(center), tolerance));
            QVERIFY(ryIsNear(stage.world(parts[0], 1), tip, tolerance));
            QCOMPARE(parts[1].mode, GLenum(GL_TRIANGLE_FAN));
            const auto size = float(std::min(stage.worldSize(50, tip), 6.0));
            const RyVec3 apex = tip + stage.truth().way(RyVec3::axis(axis)) * (size / 4);
            QVERIFY(ryIsNear(stage.world(parts[1], 0), apex, tolerance));
            for (size_t i = 1; i < parts[1].vertices.size(); ++i) {
                const double turn = double(i - 1) * M_PI / 5;
                RyVec3 spoke;
                spoke[(axis + 1) % 3] = float(std::cos(turn));
                spoke[(axis + 2) % 3] = float(std::sin(turn));
                QVERIFY(ryIsNear(stage.world(parts[1], i), tip + stage.truth().way(spoke) * (size / 10), tolerance));
            }
            QCOMPARE(parts[2].mode, GLenum(GL_POLYGON));
            for (const Primitive &part : parts)
                QVERIFY(!part.depthTest);
        }
    }
}

void RySphereDrawingTest::sizesFollowTheCamera()
{
    RyParamStage stage;
    const RyMatrix4 matrix = stage.takeBend().getDynamicMatrix();
    const RyVec3 place = stage.truth().sphere(matrix, {});
    const auto edge = [&](float distance) {
        stage.viewport->getCamera()->lookAt(place + RyVec3(0, 0, distance), place);
        const Primitive cube = stage.draw(RyDrawingStage::PickPass)->ofId(40).at(0);
        return (stage.world(cube, 0) - stage.world(cube, 1)).length();
    };
    const float scale = 1.2f; // of the bone
    const float nearEdge = edge(20);
    QVERIFY(std::abs(double(nearEdge) - 0.25 * stage.worldSize(45, place) * double(scale)) < 2e-3);
    QVERIFY(nearEdge < 0.9f * scale);
    QVERIFY(std::abs(edge(40) - 2 * nearEdge) < 2e-3f);
    QVERIFY(std::abs(edge(900) - scale) < 1e-2f); // the cap
}

void RySphereDrawingTest::eachIsShownByItsFlag()
{
    RyParamStage stage;
    stage.takeTwist();
    stage.tool->setTwistVis(false);
    const QList<int> dynamicIds{5, 6, 7, 17, 20, 18, 21, 19, 22, 11, 12, 13, 40};
    const QList<int> staticIds{8, 9, 10, 23, 26, 24, 27, 25, 28, 14, 15, 16, 39};
    stage.tool->setMatBVis(false);
    QCOMPARE(stage.drawnIds(), dynamicIds);
    const auto recording = stage.draw();
    for (const Primitive &primitive : recording->primitives)
        QVERIFY(primitive.color() == RyParamStage::dynamicColor() || primitive.color().kind == "4f");
    stage.tool->setMatAVis(false);
    QCOMPARE(stage.drawnIds(), QList<int>());
    QCOMPARE(stage.draw()->primitives.size(), size_t(0));
    stage.tool->setMatBVis(true);
    QCOMPARE(stage.drawnIds(), staticIds);
}

void RySphereDrawingTest::hiddenManipulators()
{
    RyParamStage stage;
    stage.takeTwist();
    stage.tool->setTwistVis(false);
    stage.tool->setShowManipulators(false);
    QCOMPARE(stage.drawnIds(), QList<int>({5, 6, 7, 8, 9, 10}));
    stage.showRingsOnly();
    QCOMPARE(stage.draw()->primitives.size(), size_t(6));
}

void RySphereDrawingTest::nothingWhereMatricesAreNotApplied()
{
    RyParamStage stage;
    RyLegacyTwistParam &twist = stage.takeTwist();
    twist.setApplyMatrices(false);
    QCOMPARE(stage.drawnIds(), QList<int>({33, 34}));
}

void RySphereDrawingTest::hovered()
{
    RyParamStage stage;
    stage.takeBend();
    stage.tool->setSelectedColor(QColor(10, 0, 200));
    const auto picked = stage.draw(RyDrawingStage::PickPass);
    const size_t count = stage.draw()->primitives.size();
    QVERIFY(stage.draw()->ofColor(rgbFloats(10, 0, 200)).empty());
    for (int id = 5; id <= 40; ++id) {
        if (id >= 29 && id <= 38)
            continue;
        stage.hover(id);
        const auto drawn = stage.draw();
        const auto selected = drawn->ofColor(rgbFloats(10, 0, 200));
        const auto expected = picked->ofId(id);
        QVERIFY(!expected.empty());
        QCOMPARE(selected.size(), expected.size());
        for (size_t i = 0; i < expected.size(); ++i) {
            QCOMPARE(selected[i].mode, expected[i].mode);
            QVERIFY(selected[i].vertices == expected[i].vertices);
        }
        QCOMPARE(drawn->primitives.size(), count);
    }
}

void RySphereDrawingTest::handlesOutOfViewAreLeftOut()
{
    RyParamStage stage;
    const RyMatrix4 matrix = stage.takeBend().getStaticMatrix();
    stage.tool->setMatAVis(false);
    stage.tool->setAngleVis(false);
    // Near one cube, the others are beyond the picture; so is what a body of lines has there.
    const RyVec3 cube = stage.truth().sphere(matrix, {0, 1, 0});
    stage.viewport->getCamera()->lookAt(cube + RyVec3(0, 0, 3), cube);
    const QList<int> ids = stage.drawnIds();
    QVERIFY(ids.contains(24));
    for (const int id : {23, 26, 27, 25, 28, 39})
        QVERIFY2(!ids.contains(id), qPrintable(QString::number(id)));
    stage.viewport->getCamera()->lookAt(cube + RyVec3(0, 0, 300), cube + RyVec3(0, 0, 600));
    QCOMPARE(stage.draw()->count("glVertex3f"), 0);
    QCOMPARE(stage.drawnIds(), QList<int>());
}

RY_TEST(RySphereDrawingTest)

#include "tst_RySphereDrawing.moc"
