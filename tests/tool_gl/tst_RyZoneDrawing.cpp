#include "support/RyNear.h"
#include "support/RyTest.h"

#include "RyParamStage.h"

#include "rycore/mesh/RyFacetMesh.h"

using Primitive = RyGLRecorder::Primitive;

static constexpr float tolerance = 1e-2f; // centimetres, at 150 from the camera in single precision

namespace {

const RyGLRecorder::Color white = rgbBytes(255, 255, 255);

/// Half the diagonal of what the bone's face group spans across an axis of the bone.
float radiusOf(const ParametricScene &doll, const RyBone &bone, int axis)
{
    const RyQuat toBone = bone.getOrientation().inverse();
    const RyFacetMesh &mesh = *doll.mesh();
    RyVec3 lowest(1e9f, 1e9f, 1e9f);
    RyVec3 highest = -lowest;
    const RyIndexList &facets = mesh.findFaceGroup(bone.getName())->getFacets();
    for (int i = 0; i < facets.count(); ++i) {
        const RyFacet &facet = mesh.getFacet(facets.getIndex(i));
        for (int corner = 0; corner < facet.count(); ++corner) {
            const RyVec3 place = toBone.multVec(mesh.getPositions()[size_t(facet.vertices[corner])]);
            for (int k = 0; k < 3; ++k) {
                lowest[k] = std::min(lowest[k], place[k]);
                highest[k] = std::max(highest[k], place[k]);
            }
        }
    }
    const RyVec3 extents = highest - lowest;
    return 0.5f * std::hypot(extents[(axis + 1) % 3], extents[(axis + 2) % 3]);
}

/// One end of a zone as it ought to be drawn.
struct End
{
    RyParamTruth truth;
    int axis;
    float coordinate;
    float radius;

    RyVec3 place(float first, float second) const
    {
        RyVec3 value = truth.driver.getOrigin();
        value[axis] = coordinate;
        value[(axis + 1) % 3] += first * radius;
        value[(axis + 2) % 3] += second * radius;
        return truth.world(value);
    }
};

bool hasLine(const RyParamStage &stage, const Primitive &lines, const RyVec3 &from, const RyVec3 &to)
{
    for (size_t i = 0; i + 1 < lines.vertices.size(); i += 2) {
        const RyVec3 a = stage.world(lines, i);
        const RyVec3 b = stage.world(lines, i + 1);
        if ((ryIsNear(a, from, tolerance) && ryIsNear(b, to, tolerance)) ||
            (ryIsNear(a, to, tolerance) && ryIsNear(b, from, tolerance)))
            return true;
    }
    return false;
}

void checkCross(const RyParamStage &stage, const Primitive &cross, const End &end)
{
    QCOMPARE(cross.mode, GLenum(GL_LINES));
    QCOMPARE(cross.vertices.size(), size_t(4));
    QVERIFY(hasLine(stage, cross, end.place(-1, 0), end.place(1, 0)));
    QVERIFY(hasLine(stage, cross, end.place(0, -1), end.place(0, 1)));
}

void checkRing(const RyParamStage &stage, const Primitive &ring, const End &end)
{
    QCOMPARE(ring.mode, GLenum(GL_LINE_LOOP));
    QCOMPARE(ring.vertices.size(), size_t(60));
    for (size_t i = 0; i < 60; ++i) {
        const double turn = double(i) * M_PI / 30;
        QVERIFY(ryIsNear(stage.world(ring, i), end.place(float(std::cos(turn)), float(std::sin(turn))), tolerance));
    }
}

void checkDiamond(const RyParamStage &stage, const Primitive &diamond, const End &end)
{
    QCOMPARE(diamond.mode, GLenum(GL_QUADS));
    QCOMPARE(diamond.polygonMode, GLenum(GL_LINE));
    QCOMPARE(diamond.vertices.size(), size_t(4));
    const RyVec3 tips[4] = {end.place(1, 0), end.place(0, 1), end.place(-1, 0), end.place(0, -1)};
    for (size_t i = 0; i < 4; ++i)
        QVERIFY(ryIsNear(stage.world(diamond, i), tips[i], tolerance));
}

/// What is drawn at an end: its cross and one shape.
struct Drawn
{
    Primitive cross;
    Primitive shape;
};

Drawn drawnAt(const RyGLRecorder &recording, int id)
{
    const auto parts = recording.ofId(id);
    return parts.size() == 2 ? Drawn{parts[0], parts[1]} : Drawn();
}

} // namespace

/// The zones of a twist and of a smooth-scale.
class RyZoneDrawingTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void twist_data() { ryAddFigureLooks(); }
    void twist();
    void smooth_data() { ryAddFigureLooks(); }
    void smooth();
    void orderAndColors();
    void stateWhileDrawn();
    void sidesThatThereAre();
    void flags();
    void hovered();
    void boneWithoutFacets();
    void driverIsGone();
    void zonesThatNobodyPlaced();
    void radiusFollowsTheMesh();
    void radiusIsThatOfTheCurrentNode();
    void nothingBeyondTheView();
};

void RyZoneDrawingTest::initTestCase()
{
    if (!RyDrawingStage::hasGL())
        QSKIP("no OpenGL here");
}

void RyZoneDrawingTest::twist()
{
    QFETCH(RyFigureLook, look);
    RyParamStage stage(look);
    const RyLegacyTwistParam &param = stage.takeTwist();
    stage.tool->setMatAVis(false);
    stage.tool->setMatBVis(false);
    const auto recording = stage.draw(RyDrawingStage::PickPass);
    const int axis = param.getAxis();
    const float radius = radiusOf(stage.doll, *stage.doll.lArm, axis);
    QVERIFY(radius > 3.0f);
    for (const int id : {33, 34}) {
        const End end{stage.truth(), axis, id == 33 ? param.getStart() : param.getEnd(), radius};
        checkCross(stage, drawnAt(*recording, id).cross, end);
        checkRing(stage, drawnAt(*recording, id).shape, end);
    }
}

void RyZoneDrawingTest::smooth()
{
    QFETCH(RyFigureLook, look);
    RyParamStage stage(look);
    const RyLegacySmoothScale &param = stage.takeSmooth();
    QCOMPARE(static_cast<const RyNode *>(param.getDriver()), static_cast<const RyNode *>(stage.doll.chest));
    const auto recording = stage.draw(RyDrawingStage::PickPass);
    const int axis = param.getAxis();
    const float radius = radiusOf(stage.doll, *stage.doll.lArm, axis);
    const std::pair<int, float> ends[] = {
        {35, param.getHiStart()}, {36, param.getHiEnd()}, {38, param.getLoStart()}, {37, param.getLoEnd()}};
    for (const auto &[id, coordinate] : ends) {
        // They stand in the space of the parent, which drives it.
        const End end{stage.parentTruth(), axis, coordinate, radius};
        checkCross(stage, drawnAt(*recording, id).cross, end);
        checkDiamond(stage, drawnAt(*recording, id).shape, end);
    }
}

void RyZoneDrawingTest::orderAndColors()
{
    RyParamStage stage;
    stage.tool->setMatAVis(false);
    stage.tool->setMatBVis(false);
    const RyLegacyTwistParam &twist = stage.takeTwist();
    const auto dynamicColor = RyParamStage::dynamicColor();
    const auto staticColor = RyParamStage::staticColor();
    const auto modesAndColors = [&] {
        QList<QPair<GLenum, QByteArray>> list;
        const auto recording = stage.draw();
        for (const Primitive &primitive : recording->primitives) {
            const auto color = primitive.color();
            list.append({primitive.mode, color == white          ? "white"
                                         : color == staticColor  ? "static"
                                         : color == dynamicColor ? "dynamic"
                                                                 : "another"});
        }
        return list;
    };
    using List = QList<QPair<GLenum, QByteArray>>;
    QCOMPARE(modesAndColors(), (List{{GL_LINES, "static"},
                                     {GL_LINES, "white"},
                                     {GL_LINES, "dynamic"},
                                     {GL_LINE_LOOP, "static"},
                                     {GL_LINE_LOOP, "dynamic"}}));
    const auto recording = stage.draw();
    const float radius = radiusOf(stage.doll, *stage.doll.lArm, twist.getAxis());
    const End start{stage.truth(), twist.getAxis(), twist.getStart(), radius};
    const End end{stage.truth(), twist.getAxis(), twist.getEnd(), radius};
    checkCross(stage, recording->primitives[0], start);
    QVERIFY(hasLine(stage, recording->primitives[1], start.place(0, 0), end.place(0, 0)));
    checkCross(stage, recording->primitives[2], end);
    const RyLegacySmoothScale &smooth = stage.takeSmooth();
    const List zone{
        {GL_LINES, "dynamic"}, {GL_LINES, "white"}, {GL_LINES, "static"}, {GL_QUADS, "dynamic"}, {GL_QUADS, "static"}};
    QCOMPARE(modesAndColors(), zone + zone);
    const auto zones = stage.draw();
    const int axis = smooth.getAxis();
    QVERIFY(hasLine(stage, zones->primitives[1], End{stage.parentTruth(), axis, smooth.getHiStart(), 0}.place(0, 0),
                    End{stage.parentTruth(), axis, smooth.getHiEnd(), 0}.place(0, 0)));
    QVERIFY(hasLine(stage, zones->primitives[6], End{stage.parentTruth(), axis, smooth.getLoStart(), 0}.place(0, 0),
                    End{stage.parentTruth(), axis, smooth.getLoEnd(), 0}.place(0, 0)));
    QCOMPARE(stage.draw(RyDrawingStage::PickPass)->primitives.size(), size_t(8));
}

void RyZoneDrawingTest::stateWhileDrawn()
{
    RyParamStage stage;
    stage.tool->setMatAVis(false);
    stage.tool->setMatBVis(false);
    for (const bool isTwist : {true, false}) {
        if (isTwist)
            stage.takeTwist();
        else
            stage.takeSmooth();
        for (const int pass : {3, int(RyDrawingStage::PickPass)}) {
            const auto recording = stage.draw(pass);
            QVERIFY(recording->primitives.size() >= 4);
            for (const Primitive &primitive : recording->primitives) {
                QVERIFY(!primitive.lighting && !primitive.depthWrites);
                QCOMPARE(primitive.depthFunction, GLenum(GL_ALWAYS));
            }
        }
    }
}

void RyZoneDrawingTest::sidesThatThereAre()
{
    RyParamStage stage;
    stage.tool->setMatAVis(false);
    stage.tool->setMatBVis(false);
    RyLegacySmoothScale &smooth = stage.takeSmooth();
    QCOMPARE(stage.drawnIds(), QList<int>({35, 36, 38, 37}));
    smooth.setLoValid(false);
    QCOMPARE(stage.drawnIds(), QList<int>({35, 36}));
    smooth.setHiValid(false);
    QCOMPARE(stage.drawnIds(), QList<int>());
    smooth.setLoValid(true);
    QCOMPARE(stage.drawnIds(), QList<int>({38, 37}));
}

void RyZoneDrawingTest::flags()
{
    RyParamStage stage;
    stage.tool->setMatAVis(false);
    stage.tool->setMatBVis(false);
    RyLegacyTwistParam &twist = stage.takeTwist();
    const QList<int> twistIds{33, 34};
    const QList<int> smoothIds{35, 36, 38, 37};
    QCOMPARE(stage.drawnIds(), twistIds);
    stage.tool->setSmoothVis(false); // is about others
    QCOMPARE(stage.drawnIds(), twistIds);
    stage.tool->setTwistVis(false);
    QCOMPARE(stage.drawnIds(), QList<int>());
    stage.tool->setTwistVis(true);
    twist.setApplyBlend(false);
    QCOMPARE(stage.drawnIds(), QList<int>());
    stage.tool->setSmoothVis(true);
    stage.tool->setTwistVis(false);
    RyLegacySmoothScale &smooth = stage.takeSmooth();
    QCOMPARE(stage.drawnIds(), smoothIds);
    stage.tool->setSmoothVis(false);
    QCOMPARE(stage.drawnIds(), QList<int>());
    stage.tool->setSmoothVis(true);
    smooth.setApplyZones(false);
    QCOMPARE(stage.drawnIds(), QList<int>());
    // They are no part of what hides with the manipulators.
    smooth.setApplyZones(true);
    stage.tool->setShowManipulators(false);
    QCOMPARE(stage.drawnIds(), smoothIds);
}

void RyZoneDrawingTest::hovered()
{
    RyParamStage stage;
    stage.tool->setSelectedColor(QColor(10, 0, 200));
    for (int id = 33; id <= 38; ++id) {
        if (id < 35)
            stage.takeTwist();
        else
            stage.takeSmooth();
        stage.hover(id);
        const auto selected = stage.draw()->ofColor(rgbFloats(10, 0, 200));
        const auto picked = stage.draw(RyDrawingStage::PickPass)->ofId(id);
        QCOMPARE(selected.size(), size_t(2));
        QCOMPARE(picked.size(), size_t(2));
        for (size_t i = 0; i < 2; ++i)
            QVERIFY(selected[i].vertices == picked[i].vertices);
    }
}

void RyZoneDrawingTest::boneWithoutFacets()
{
    RyParamStage stage;
    const RyLegacyTwistParam &param = stage.takeTwist();
    stage.doll.mesh()->setFacets({});
    stage.doll.mesh()->setPositions({});
    const auto recording = stage.draw(RyDrawingStage::PickPass);
    const float length = (stage.doll.lArm->getEndPoint() - stage.doll.lArm->getOrigin()).length();
    checkRing(stage, drawnAt(*recording, 33).shape, {stage.truth(), param.getAxis(), param.getStart(), length / 4});
}

void RyZoneDrawingTest::driverIsGone()
{
    RyParamStage stage;
    RyLegacySmoothScale &param = stage.takeSmooth();
    param.setDriver(nullptr);
    const auto recording = stage.draw(RyDrawingStage::PickPass);
    const float radius = radiusOf(stage.doll, *stage.doll.lArm, param.getAxis());
    checkDiamond(stage, drawnAt(*recording, 36).shape, {stage.truth(), param.getAxis(), param.getHiEnd(), radius});
}

void RyZoneDrawingTest::zonesThatNobodyPlaced()
{
    RyParamStage stage;
    RyLegacyTwistParam &param = stage.takeTwist();
    param.setStart(-RyLegacyTwistParam::Farthest);
    param.setEnd(RyLegacyTwistParam::Farthest);
    const auto recording = stage.draw();
    const auto lines = recording->ofColor(white);
    QCOMPARE(lines.size(), size_t(1)); // it goes through the picture
    const RyVec3 tip = stage.truth().value(stage.world(lines[0], 1));
    QVERIFY(std::abs(tip[param.getAxis()] - RyLegacyTwistParam::Farthest) < 10.0f);
    QCOMPARE(glGetError(), GLenum(GL_NO_ERROR));
}

void RyZoneDrawingTest::radiusFollowsTheMesh()
{
    RyParamStage stage;
    const RyLegacyTwistParam &param = stage.takeTwist();
    const auto check = [&] {
        const auto recording = stage.draw(RyDrawingStage::PickPass);
        checkRing(
            stage, drawnAt(*recording, 34).shape,
            {stage.truth(), param.getAxis(), param.getEnd(), radiusOf(stage.doll, *stage.doll.lArm, param.getAxis())});
    };
    check();
    const float before = radiusOf(stage.doll, *stage.doll.lArm, param.getAxis());
    std::vector<RyVec3> positions = stage.doll.mesh()->getPositions();
    for (RyVec3 &position : positions)
        position = position * 1.5f;
    stage.doll.mesh()->setPositions(positions);
    QVERIFY(radiusOf(stage.doll, *stage.doll.lArm, param.getAxis()) > before + 1.0f);
    check();
    // Other axes of the bone span it otherwise.
    stage.doll.lArm->setOrientation(RyQuat({0, 1, 1}, 0.9f));
    check();
}

void RyZoneDrawingTest::radiusIsThatOfTheCurrentNode()
{
    RyParamStage stage;
    stage.viewport->getCamera()->lookAt({40, 140, 330}, {20, 110, 0});
    const auto radiusAt = [&](RyBone *bone) {
        stage.select(bone);
        for (RyLegacyJointParam *param : stage.doll.joint(bone)->params()) {
            auto *twist = qobject_cast<RyLegacyTwistParam *>(param);
            if (!twist || twist->getDriver() != bone)
                continue;
            twist->setApplyBlend(true);
            twist->setStart(bone->getOrigin()[twist->getAxis()]);
            stage.tool->setParam(twist);
            const auto recording = stage.draw(RyDrawingStage::PickPass);
            const RyParamTruth truth{*bone};
            const RyVec3 arm = truth.value(stage.world(drawnAt(*recording, 33).cross, 0)) - bone->getOrigin();
            return std::pair(arm.length(), radiusOf(stage.doll, *bone, twist->getAxis()));
        }
        return std::pair(0.0f, 1.0f);
    };
    // Forth and back, so that no value changes between the last two.
    for (RyBone *bone : {stage.doll.lArm, stage.doll.lTip, stage.doll.lArm, stage.doll.lTip}) {
        const auto [drawn, expected] = radiusAt(bone);
        QVERIFY2(std::abs(drawn - expected) < 5 * tolerance, qPrintable(bone->getName()));
    }
}

void RyZoneDrawingTest::nothingBeyondTheView()
{
    RyParamStage stage;
    stage.takeTwist();
    stage.viewport->getCamera()->lookAt({0, 100, 300}, {0, 100, 600});
    QCOMPARE(stage.draw()->count("glVertex3f"), 0);
}

RY_TEST(RyZoneDrawingTest)

#include "tst_RyZoneDrawing.moc"
