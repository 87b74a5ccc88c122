#include "support/RyNear.h"
#include "support/RyTest.h"

#include "RyDrawingStage.h"

#include "rycore/base/RyFloatProperty.h"

namespace {

std::vector<RyGLRecorder::Primitive> ofId(const RyGLRecorder &recording, GLenum mode, int id)
{
    std::vector<RyGLRecorder::Primitive> found;
    for (const auto &primitive : recording.ofMode(mode)) {
        if (primitive.color() == rgbBytes(id, 0, 128))
            found.push_back(primitive);
    }
    return found;
}

/// Centre and radius of a ball drawn in strips, in the world.
struct Ball
{
    RyVec3 center;
    float radius = 0;
    size_t strips = 0;
};

Ball ballOf(const RyDrawingStage &stage, const std::vector<RyGLRecorder::Primitive> &strips)
{
    RyBox3 box;
    for (const auto &strip : strips) {
        for (size_t i = 0; i < strip.vertices.size(); ++i)
            box.include(stage.world(strip, i));
    }
    return {box.getCenter(), box.getExtents().y / 2, strips.size()};
}

} // namespace

/// The handles of origin and end point, and what a draw leaves behind.
class RyManipulatorDrawingTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void originAxes();
    void endPointAxes();
    void endPointOfAScaledNode();
    void coneShape();
    void balls();
    void sizesFollowTheCamera();
    void tipAtTheEdge();
    void density();
    void storedDensityOfZero();
    void hiddenManipulators();
    void highlight();
    void colors();
    void lineWidthInPickPass();
    void nothingForNodesWithoutRigging();
    void hobbleChangesNothing();
    void stateIsLeftAsItWas();
    void order();
    void picksEndToEnd();
    void highlightInThePicture();
};

void RyManipulatorDrawingTest::initTestCase()
{
    if (!RyDrawingStage::hasGL())
        QSKIP("no OpenGL here");
}

void RyManipulatorDrawingTest::originAxes()
{
    RyDrawingStage stage;
    stage.pose();
    for (RyNode *node : {static_cast<RyNode *>(stage.lShin), static_cast<RyNode *>(stage.figure)}) {
        stage.select(node);
        const auto recording = stage.draw(RyDrawingStage::PickPass);
        const RyQuat axes = node->getNodeParent() ? node->getNodeParent()->getWSRot() : RyQuat();
        for (int axis = 0; axis < 3; ++axis) {
            const auto lines = ofId(*recording, GL_LINES, 41 + axis);
            QCOMPARE(lines.size(), size_t(1));
            QVERIFY(ryIsNear(stage.world(lines[0], 0), node->getWSPos(), 5e-3f));
            QVERIFY(
                ryIsNear(stage.world(lines[0], 1), node->getWSPos() + axes.multVec(RyVec3::axis(axis)) * 5.0f, 5e-3f));
        }
        const auto cross = ofId(*recording, GL_LINES, 1);
        QCOMPARE(cross.size(), size_t(1));
        QCOMPARE(cross[0].vertices.size(), size_t(6));
        for (size_t axis = 0; axis < 3; ++axis) {
            const RyVec3 arm = axes.multVec(RyVec3::axis(int(axis))) * 5.0f;
            QVERIFY(ryIsNear(stage.world(cross[0], 2 * axis), node->getWSPos() - arm, 5e-3f));
            QVERIFY(ryIsNear(stage.world(cross[0], 2 * axis + 1), node->getWSPos() + arm, 5e-3f));
        }
    }
}

void RyManipulatorDrawingTest::endPointAxes()
{
    RyDrawingStage stage;
    stage.pose();
    for (RyBone *bone : {stage.hip, stage.lShin, stage.lFoot}) {
        stage.select(bone);
        const auto recording = stage.draw(RyDrawingStage::PickPass);
        for (int axis = 0; axis < 3; ++axis) {
            const auto lines = ofId(*recording, GL_LINES, 44 + axis);
            QCOMPARE(lines.size(), size_t(1));
            const RyVec3 direction = bone->getWSTransform().multDirMatrix(RyVec3::axis(axis)).normalized();
            QVERIFY(ryIsNear(stage.world(lines[0], 0), bone->getWSEndPoint(), 5e-3f));
            QVERIFY(ryIsNear(stage.world(lines[0], 1), bone->getWSEndPoint() + direction * 5.0f, 5e-3f));
        }
        QCOMPARE(ofId(*recording, GL_LINES, 2).size(), size_t(1));
        QVERIFY(ryIsNear(ballOf(stage, ofId(*recording, GL_TRIANGLE_STRIP, 2)).center, bone->getWSEndPoint(), 1e-2f));
        QVERIFY(ryIsNear(ballOf(stage, ofId(*recording, GL_TRIANGLE_STRIP, 1)).center, bone->getWSPos(), 1e-2f));
    }
}

void RyManipulatorDrawingTest::endPointOfAScaledNode()
{
    RyDrawingStage stage;
    stage.pose();
    stage.figure->getScaleControl()->setValue(1.5f);
    stage.lThigh->getXScaleControl()->setValue(0.7f);
    stage.viewport->getCamera()->lookAt({60, 160, 520}, {0, 90, 0}); // all of them are in view
    for (RyBone *bone : {stage.hip, stage.lThigh, stage.lShin}) {
        stage.select(bone);
        const auto lines = ofId(*stage.draw(RyDrawingStage::PickPass), GL_LINES, 44);
        QVERIFY2(ryIsNear(stage.world(lines.at(0), 0), bone->getWSEndPoint(), 1e-2f), qPrintable(bone->getName()));
    }
}

void RyManipulatorDrawingTest::coneShape()
{
    RyDrawingStage stage;
    stage.select(stage.lShin);
    const auto recording = stage.draw(RyDrawingStage::PickPass);
    for (int axis = 0; axis < 3; ++axis) {
        const RyVec3 base = RyVec3::axis(axis) * 5.0f;
        const double size = std::min(stage.worldSize(50, stage.lShin->getWSPos() + base), 6.0);
        const auto fans = ofId(*recording, GL_TRIANGLE_FAN, 41 + axis);
        QCOMPARE(fans.size(), size_t(1));
        QCOMPARE(fans[0].vertices.size(), size_t(12));
        std::vector<RyVec3> points;
        for (size_t i = 0; i < 12; ++i)
            points.push_back(stage.world(fans[0], i) - stage.lShin->getWSPos());
        QVERIFY(ryIsNear(points[0], base + RyVec3::axis(axis) * float(size / 4), 1e-3f));
        for (size_t i = 1; i < 12; ++i) {
            const RyVec3 spoke = points[i] - base;
            QVERIFY(std::abs(spoke.dot(RyVec3::axis(axis))) < 1e-3f);
            QVERIFY(std::abs(spoke.length() - float(size / 10)) < 1e-3f);
            if (i > 1) {
                const double step = double(spoke.getAngleTo(points[i - 1] - base));
                QVERIFY(std::abs(step - 36.0 * M_PI / 180.0) < 1e-3);
            }
        }
        QVERIFY(ryIsNear(points[1], points[11], 1e-3f));
        const auto rims = ofId(*recording, GL_POLYGON, 41 + axis);
        QCOMPARE(rims.size(), size_t(1));
        QCOMPARE(rims[0].vertices.size(), size_t(11));
        for (size_t i = 0; i < 11; ++i)
            QCOMPARE(rims[0].vertices[i], fans[0].vertices[i + 1]);
    }
}

void RyManipulatorDrawingTest::balls()
{
    RyDrawingStage stage;
    stage.tool->setSphereLineDensity(24);
    stage.select(stage.lShin);
    const auto recording = stage.draw(RyDrawingStage::PickPass);
    const Ball origin = ballOf(stage, ofId(*recording, GL_TRIANGLE_STRIP, 1));
    const double expected = std::min(stage.worldSize(40, stage.lShin->getWSPos()) / 12, 1.5);
    QVERIFY(expected < 1.5);
    QVERIFY(std::abs(double(origin.radius) - expected) < 2e-3);
    const Ball end = ballOf(stage, ofId(*recording, GL_TRIANGLE_STRIP, 2));
    QVERIFY(std::abs(double(end.radius) - std::min(stage.worldSize(40, stage.lShin->getWSEndPoint()) / 12, 1.5)) <
            2e-3);
    QVERIFY(end.strips > 0);
}

void RyManipulatorDrawingTest::sizesFollowTheCamera()
{
    RyDrawingStage stage;
    stage.tool->setSphereLineDensity(24);
    stage.select(stage.lShin);
    const auto radius = [&] {
        return ballOf(stage, ofId(*stage.draw(RyDrawingStage::PickPass), GL_TRIANGLE_STRIP, 1)).radius;
    };
    const auto coneHeight = [&] {
        const auto fan = ofId(*stage.draw(RyDrawingStage::PickPass), GL_TRIANGLE_FAN, 41).at(0);
        return stage.world(fan, 0).x - stage.lShin->getWSPos().x - 5.0f;
    };
    stage.viewport->getCamera()->lookAt({11, 50, 52}, {11, 50, 2});
    const float nearRadius = radius();
    const float nearHeight = coneHeight();
    stage.viewport->getCamera()->lookAt({11, 50, 102}, {11, 50, 2});
    QVERIFY(std::abs(radius() - 2 * nearRadius) < 1e-3f);
    QVERIFY(std::abs(coneHeight() - 2 * nearHeight) < 2e-3f);
    stage.viewport->getCamera()->lookAt({11, 50, 5002}, {11, 50, 2});
    QVERIFY(std::abs(radius() - 1.5f) < 2e-2f); // the cap
    QVERIFY(std::abs(coneHeight() - 1.5f) < 1e-4f);
}

/// An arrow is drawn where nothing but the tip of its cone is in the picture.
void RyManipulatorDrawingTest::tipAtTheEdge()
{
    RyDrawingStage stage;
    stage.select(stage.lShin);
    stage.viewport->getCamera()->setOrthographic(true);
    stage.viewport->getCamera()->setOrthographicHeight(60.0f);
    const float halfWidth = 40.0f; // of a picture of 800 by 600
    const RyVec3 origin = stage.lShin->getWSPos();
    const auto cones = [&](float x) {
        stage.viewport->getCamera()->lookAt({x, origin.y, origin.z + 120}, {x, origin.y, origin.z});
        return ofId(*stage.draw(RyDrawingStage::PickPass), GL_TRIANGLE_FAN, 41);
    };
    const auto inTheMiddle = cones(origin.x);
    QCOMPARE(int(inTheMiddle.size()), 1);
    const float tip = stage.world(inTheMiddle[0], 0).x;
    QVERIFY2(tip > origin.x + 5.9f, qPrintable(QString::number(tip - origin.x)));
    QCOMPARE(int(cones(tip - 0.05f + halfWidth).size()), 1);
    QCOMPARE(int(cones(tip + 3.0f + halfWidth).size()), 0);
}

void RyManipulatorDrawingTest::density()
{
    RyDrawingStage stage;
    stage.select(stage.lShin);
    const auto strips = [&](int density) {
        stage.tool->setSphereLineDensity(density);
        return ofId(*stage.draw(RyDrawingStage::PickPass), GL_TRIANGLE_STRIP, 1).size();
    };
    QVERIFY(strips(60) > strips(10));
    QVERIFY(strips(1) > 0);
}

void RyManipulatorDrawingTest::storedDensityOfZero()
{
    // What the balls are made of, by the density that a new tool finds in the settings.
    const auto ball = [](int stored) {
        RyDrawingStage stage;
        RyAppSettings(QStringLiteral("Joint Editor Tool")).setIntValue(QStringLiteral("SphereDensity"), stored);
        stage.manager->deleteTools();
        stage.tool = new RyJointEditorTool;
        stage.manager->addTool(stage.tool);
        stage.select(stage.lShin);
        std::vector<RyVec3> vertices;
        for (const auto &strip : ofId(*stage.draw(RyDrawingStage::PickPass), GL_TRIANGLE_STRIP, 1))
            vertices.insert(vertices.end(), strip.vertices.begin(), strip.vertices.end());
        return vertices;
    };
    const std::vector<RyVec3> ofZero = ball(0);
    QVERIFY(!ofZero.empty());
    QVERIFY(ofZero == ball(1));
    QVERIFY(ofZero.size() < ball(12).size());
}

void RyManipulatorDrawingTest::hiddenManipulators()
{
    RyDrawingStage stage;
    stage.tool->setShowManipulators(false);
    stage.select(stage.lShin);
    const auto recording = stage.draw(RyDrawingStage::PickPass);
    for (int id = 41; id <= 46; ++id) {
        for (const auto &primitive : recording->primitives)
            QVERIFY(!(primitive.color() == rgbBytes(id, 0, 128)));
    }
    for (int id : {1, 2}) {
        QCOMPARE(ofId(*recording, GL_LINES, id).size(), size_t(1));
        QVERIFY(!ofId(*recording, GL_TRIANGLE_STRIP, id).empty());
    }
}

void RyManipulatorDrawingTest::highlight()
{
    RyDrawingStage stage;
    stage.select(stage.lShin);
    stage.hover(45);
    auto recording = stage.draw();
    const auto yellow = recording->ofColor(rgbFloats(255, 255, 0));
    QCOMPARE(yellow.size(), size_t(3)); // line, fan and rim of one arrow
    QVERIFY(ryIsNear(stage.world(yellow[0], 1), stage.lShin->getWSEndPoint() + RyVec3(0, 5, 0), 5e-3f));
    stage.tool->setSelectedColor(QColor(10, 0, 0));
    recording = stage.draw();
    QCOMPARE(recording->ofColor(rgbFloats(10, 0, 0)).size(), size_t(3));
    // The pick pass knows no highlight.
    QCOMPARE(stage.draw(RyDrawingStage::PickPass)->count("glColor3f"), 0);
    // While dragged too.
    stage.hover(0);
    stage.press(1, {400, 300});
    stage.move({410, 300});
    QVERIFY(!stage.draw()->ofColor(rgbFloats(10, 0, 0)).empty());
    stage.release();
    QVERIFY(stage.draw()->ofColor(rgbFloats(10, 0, 0)).empty());
}

void RyManipulatorDrawingTest::colors()
{
    RyDrawingStage stage;
    stage.tool->setBoneDrawMode(RyJointEditorTool::NoBones);
    stage.tool->setDrawMeshBoundaries(false);
    stage.tool->setDynamicColor(QColor(12, 34, 56));
    stage.select(stage.lShin);
    const auto recording = stage.draw();
    QVERIFY(recording->primitives.size() > 20);
    for (const auto &primitive : recording->primitives) {
        QCOMPARE(primitive.color(), rgbBytes(12, 34, 56));
        QVERIFY(!primitive.lighting);
        QVERIFY(!primitive.depthTest);
    }
    QVERIFY(recording->contains("glPushAttrib", {double(GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT | GL_LINE_BIT)}));
    // All colours go with vertices: one set aside would have the driver compile another program.
    bool isWithin = false;
    for (const auto &call : recording->calls) {
        isWithin = call.name == "glBegin" || (isWithin && call.name != "glEnd");
        QVERIFY(isWithin || !call.name.startsWith("glColor"));
    }
}

void RyManipulatorDrawingTest::lineWidthInPickPass()
{
    RyDrawingStage stage;
    stage.select(stage.lShin);
    for (float width : {3.0f, 10.0f, 14.0f}) {
        glLineWidth(width);
        for (const auto &line : ofId(*stage.draw(RyDrawingStage::PickPass), GL_LINES, 44))
            QCOMPARE(line.lineWidth, std::min(width, 10.0f));
        for (const auto &line : stage.draw()->ofColor(rgbBytes(0, 255, 0)))
            QCOMPARE(line.lineWidth, width);
    }
    glLineWidth(1.0f);
}

void RyManipulatorDrawingTest::nothingForNodesWithoutRigging()
{
    RyDrawingStage stage;
    auto *bare = new RyNode(RyNode::Rigging::None);
    ryScene()->addNode(bare);
    stage.select(bare);
    QCOMPARE(int(stage.draw()->primitives.size()), 0);
    QCOMPARE(int(stage.draw(RyDrawingStage::PickPass)->primitives.size()), 0);
}

void RyManipulatorDrawingTest::hobbleChangesNothing()
{
    RyDrawingStage stage;
    stage.select(stage.lShin);
    for (int style : {3, 11}) {
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

void RyManipulatorDrawingTest::stateIsLeftAsItWas()
{
    RyDrawingStage stage;
    stage.tool->setGhostBones(true);
    stage.select(stage.lShin);
    for (int style : {3, 11}) {
        // Loads the matrices that the state is compared with; what this leaves behind is set anew.
        stage.draw(style);
        RyDrawingStage::setUncommonState();
        const QVector<float> before = RyDrawingStage::glState();
        stage.draw(style);
        QCOMPARE(RyDrawingStage::glState(), before);
        QCOMPARE(glGetError(), GLenum(GL_NO_ERROR));
    }
    RyDrawingStage::setCommonState();
}

void RyManipulatorDrawingTest::order()
{
    RyDrawingStage stage;
    stage.select(stage.lShin);
    const auto recording = stage.draw(RyDrawingStage::PickPass);
    // Bones, then the origin's arrows, crosshair and ball, then those of the end point.
    QList<int> ids;
    for (const auto &primitive : recording->primitives) {
        const int id = int(primitive.color().r);
        if (ids.isEmpty() || ids.last() != id)
            ids.append(id);
    }
    QCOMPARE(ids, (QList<int>{47, 48, 49, 50, 51, 41, 42, 43, 1, 44, 45, 46, 2}));
}

void RyManipulatorDrawingTest::picksEndToEnd()
{
    RyDrawingStage stage;
    stage.select(stage.lShin);
    stage.viewport->getCamera()->lookAt({70, 60, 110}, {11, 30, 2});
    const auto pick = [&](const RyVec3 &world) {
        return stage.viewport->Ry3DViewport::pickOnGizmo(stage.pixelOf(world));
    };
    const RyVec3 origin = stage.lShin->getWSPos();
    const RyVec3 end = stage.lShin->getWSEndPoint();
    QCOMPARE(pick(origin), 1);
    QCOMPARE(pick(end), 2);
    // Beyond the thick ends of the crosshair, within the cone.
    for (int axis = 0; axis < 3; ++axis) {
        QCOMPARE(pick(origin + RyVec3::axis(axis) * 5.7f), 41 + axis);
        QCOMPARE(pick(end + RyVec3::axis(axis) * 5.7f), 44 + axis);
    }
    // The bodies of bones, which point along X as they are not aligned.
    const float shinLength = (stage.lShin->getEndPoint() - stage.lShin->getOrigin()).length();
    QCOMPARE(pick(origin - RyVec3(1, 0, 0) * (0.4f * shinLength)), 49);
    QCOMPARE(pick(RyVec3(500, 500, -500)), 0);
}

void RyManipulatorDrawingTest::highlightInThePicture()
{
    RyDrawingStage stage;
    stage.tool->setBoneDrawMode(RyJointEditorTool::NoBones);
    stage.select(stage.lShin);
    stage.viewport->getCamera()->lookAt({11, 50, 60}, {11, 50, 2});
    const auto colorAtOrigin = [&](const QColor &selected) {
        stage.tool->setSelectedColor(selected);
        stage.hover(0);
        stage.hover(1);
        glClearColor(0, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        stage.draw();
        unsigned char pixel[4] = {};
        const QPoint point = stage.pixelOf(stage.lShin->getWSPos());
        glReadPixels(point.x(), 599 - point.y(), 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
        return QColor(pixel[0], pixel[1], pixel[2]);
    };
    QCOMPARE(colorAtOrigin(QColor(255, 255, 0)), QColor(255, 255, 0));
    QCOMPARE(colorAtOrigin(QColor(10, 0, 0)), QColor(255, 0, 0));
}

RY_TEST(RyManipulatorDrawingTest)

#include "tst_RyManipulatorDrawing.moc"
