#include "support/RyTest.h"

#include "RyWeightStage.h"

#include "rycore/app/RyMainWindow.h"
#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/scene/RyFacetShape.h"

#include <QStatusBar>

#include <cmath>

Q_DECLARE_METATYPE(std::function<void(RyWeightStage &)>)

using Corners = std::vector<RyWeightStage::Corner>;

/// How far vertices follow the current parameter, beside sums from its maps.
class RyWeightDrawingTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void bothSides_data();
    void bothSides();
    void smoothScale_data();
    void smoothScale();
    void tieGoesToTheSideItself();
    void linesShowOneParameter();
    void modes_data();
    void modes();
    void pointSizes_data();
    void pointSizes();
    void oneSideWithoutPartner();
    void wholeMeshWithoutPairs();
    void nothingToDraw_data();
    void nothingToDraw();
    void missingGroupIsTold();
    void driverIsGone();
    void lightingIsOff();
    void stateIsLeftAsItWas_data();
    void stateIsLeftAsItWas();
};

void RyWeightDrawingTest::initTestCase()
{
    if (!RyDrawingStage::hasGL())
        QSKIP("no OpenGL here");
}

static Corners joined(Corners first, const Corners &second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

void RyWeightDrawingTest::bothSides_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("bend about Y") << "jointy";
    QTest::newRow("bend about Z, with spheres") << "jointz";
    QTest::newRow("twist") << "twistx";
}

void RyWeightDrawingTest::bothSides()
{
    QFETCH(QString, name);
    RyWeightStage stage;
    RyLegacyJointParam *own = stage.use(stage.doll.lHand, qPrintable(name));
    RyLegacyJointParam *partner = stage.doll.param(stage.doll.lArm, qPrintable("lHand_" + name));
    QVERIFY(own && partner && stage.tool->partnerParam() == partner);
    const Corners drawn = stage.drawn(*stage.draw());
    const Corners hand = stage.corners("lHand", own, false, partner, false);
    const Corners arm = stage.corners("lArm", partner, false, own, false);
    const QString difference = RyWeightStage::difference(drawn, joined(arm, hand));
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
    // Neither colour alone.
    const auto isMixed = [](const RyGLRecorder::Color &c) { return c.g > 25 && c.g < 195; };
    QVERIFY(RyWeightStage::count(drawn, isMixed) > 10);
}

void RyWeightDrawingTest::smoothScale_data()
{
    QTest::addColumn<QString>("bone");
    QTest::addColumn<QString>("name");
    QTest::newRow("driven by the parent") << "lHand"
                                          << "lArm_smoox";
    QTest::newRow("driven by the child") << "lArm"
                                         << "lHand_smoox";
}

/// The parameter itself has its colours the other way round.
void RyWeightDrawingTest::smoothScale()
{
    QFETCH(QString, bone);
    QFETCH(QString, name);
    RyWeightStage stage;
    RyLegacyJointParam *own = stage.use(stage.doll.figure->findBone(bone), qPrintable(name));
    RyLegacyJointParam *partner = stage.tool->bendPartnerParam();
    QVERIFY(own && partner);
    QVERIFY(own->getDriver() == partner->getJoint()->getBone());
    const Corners drawn = stage.drawn(*stage.draw());
    const Corners here = stage.corners(bone, own, true, partner, false);
    const Corners there = stage.corners(own->getDriver()->getName(), partner, false, own, true);
    const QString difference = RyWeightStage::difference(drawn, joined(there, here));
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
    QVERIFY(!RyWeightStage::difference(stage.corners(bone, own, false, partner, false), here).isEmpty());
}

void RyWeightDrawingTest::tieGoesToTheSideItself()
{
    RyWeightStage stage;
    // Neither acts on the vertices of the tip: both shares are 0 there.
    RyLegacyJointParam *own = stage.use(stage.doll.lHand, "lArm_smoox");
    const RySelectionMap *map = stage.doll.figure->getSelectionMap();
    QCOMPARE(map->findGroupForNode(stage.doll.lHand), QStringLiteral("lHand"));
    stage.doll.figure->getSelectionMap()->removePair(map->findPair(stage.doll.lHand));
    stage.doll.figure->getSelectionMap()->removePair(map->findPair(stage.doll.lArm));
    stage.doll.figure->getSelectionMap()->removePair(map->findPair(stage.doll.chest));
    QVERIFY(own->getJoint()->getGroupName().isEmpty());
    RyLegacyJointParam *partner = stage.tool->bendPartnerParam();
    const Corners drawn = stage.drawn(*stage.draw());
    const Corners here = stage.corners(QString(), own, true, partner, false);
    const Corners there = stage.corners(QString(), partner, false, own, true);
    const QString difference = RyWeightStage::difference(drawn, joined(there, here));
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
    // The partner's first, so that the side itself covers it.
    const Corners first(drawn.begin(), drawn.begin() + int(there.size()));
    const Corners second(drawn.begin() + int(there.size()), drawn.end());
    const auto isDynamic = [](const RyGLRecorder::Color &c) { return c.r == 10 && c.g == 200 && c.b == 90; };
    const auto isStatic = [](const RyGLRecorder::Color &c) { return c.r == 230 && c.g == 20 && c.b == 40; };
    bool isTie = false;
    for (size_t i = 0; i < first.size(); ++i)
        isTie = isTie || (isStatic(first[i].color) && isDynamic(second[i].color)); // each says 0 in its own way
    QVERIFY(isTie);
}

void RyWeightDrawingTest::linesShowOneParameter()
{
    RyWeightStage stage;
    stage.tool->setWeightMapMode(1);
    RySelectionMap *map = stage.doll.figure->getSelectionMap();
    while (map->getNumPairs() > 0)
        map->removePair(0);
    RyLegacyJointParam *own = stage.use(stage.doll.lHand, "jointy");
    RyLegacyJointParam *partner = stage.tool->partnerParam();
    const Corners here = stage.corners(QString(), own, false, partner, false, true);
    const Corners there = stage.corners(QString(), partner, false, own, false, true);
    const QString difference = RyWeightStage::difference(stage.drawn(*stage.draw()), joined(there, here));
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
    const Corners larger = stage.corners(QString(), own, false, partner, false);
    QVERIFY(!RyWeightStage::difference(larger, here).isEmpty());
}

void RyWeightDrawingTest::modes_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("polygonMode");
    QTest::newRow("points") << 0 << int(GL_POINT);
    QTest::newRow("lines") << 1 << int(GL_LINE);
    QTest::newRow("solid") << 2 << int(GL_FILL);
}

void RyWeightDrawingTest::modes()
{
    QFETCH(int, mode);
    QFETCH(int, polygonMode);
    RyWeightStage stage;
    stage.tool->setWeightMapMode(mode);
    const auto recording = stage.draw();
    int triangles = 0;
    int quads = 0;
    for (const auto &elements : recording->elements) {
        if (!elements.writesColors)
            continue;
        QCOMPARE(elements.polygonMode[0], polygonMode);
        QCOMPARE(elements.polygonMode[1], polygonMode);
        QVERIFY(elements.hasBuffers);
        QCOMPARE(elements.primitive.colors.size(), elements.primitive.vertices.size());
        for (const auto &color : elements.primitive.colors)
            QCOMPARE(color.a, 170.0);
        (elements.primitive.mode == GL_TRIANGLES ? triangles : quads) += int(elements.primitive.vertices.size());
    }
    int facets[2] = {};
    const RyFacetMesh &mesh = *stage.doll.mesh();
    for (const RyFacet &facet : mesh.getFacets()) {
        if (facet.group == mesh.findFaceGroupIndex("lHand") || facet.group == mesh.findFaceGroupIndex("lArm"))
            ++facets[facet.isTriangle()];
    }
    QCOMPARE(quads, 4 * facets[0]);
    QCOMPARE(triangles, 3 * facets[1]);
    QVERIFY(triangles > 0 && quads > 0);
}

void RyWeightDrawingTest::pointSizes_data()
{
    QTest::addColumn<float>("distance");
    QTest::addColumn<float>("size");
    const auto above = [](float distance) { return std::nextafter(distance, 1e6f); };
    QTest::newRow("near") << 30.0f << 12.0f;
    QTest::newRow("100") << 100.0f << 12.0f;
    QTest::newRow("just above 100") << above(100.0f) << 9.0f;
    QTest::newRow("200") << 200.0f << 9.0f;
    QTest::newRow("just above 200") << above(200.0f) << 6.0f;
    QTest::newRow("300") << 300.0f << 6.0f;
    QTest::newRow("just above 300") << above(300.0f) << 3.0f;
    QTest::newRow("far") << 700.0f << 3.0f;
}

/// So far from a place to the last digit, as far as floats allow.
static bool placeCamera(RyCamera &camera, const RyVec3 &place, float distance)
{
    const float step = std::nextafter(distance, 1e6f) - distance;
    for (int sign : {1, -1}) {
        for (int tries = -20; tries <= 20; ++tries) {
            camera.lookAt(place + RyVec3(0, 0, float(sign) * (distance + float(tries) * step)), place);
            if ((place - camera.getWSPos()).length() == distance)
                return true;
        }
    }
    return false;
}

void RyWeightDrawingTest::pointSizes()
{
    QFETCH(float, distance);
    QFETCH(float, size);
    RyWeightStage stage;
    stage.tool->setWeightMapMode(0);
    stage.use(stage.doll.lHand, "twistx");
    const RyVec3 first = stage.doll.figure->worldMap().toMatrix4().multVecMatrix(
        stage.doll.figure->getObject()->getDeformedPositions().front());
    QVERIFY(placeCamera(*stage.viewport->getCamera(), first, distance));
    const auto recording = stage.draw();
    int drawn = 0;
    for (const auto &elements : recording->elements) {
        if (!elements.writesColors)
            continue;
        QCOMPARE(elements.primitive.pointSize, size);
        ++drawn;
    }
    QVERIFY(drawn > 0);
}

void RyWeightDrawingTest::oneSideWithoutPartner()
{
    RyWeightStage stage;
    RyLegacyJointParam *own = stage.use(stage.doll.lHand, "jointz");
    stage.doll.joint(stage.doll.lArm)->removeJointParam(stage.tool->partnerParam());
    stage.tool->setParam(nullptr);
    stage.use(stage.doll.lHand, "jointz");
    QVERIFY(!stage.tool->partnerParam());
    const QString difference =
        RyWeightStage::difference(stage.drawn(*stage.draw()), stage.corners("lHand", own, false, nullptr, false));
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void RyWeightDrawingTest::wholeMeshWithoutPairs()
{
    RyWeightStage stage;
    RySelectionMap *map = stage.doll.figure->getSelectionMap();
    while (map->getNumPairs() > 0)
        map->removePair(0);
    RyLegacyJointParam *own = stage.use(stage.doll.lHand, "jointy");
    RyLegacyJointParam *partner = stage.tool->partnerParam();
    const Corners here = stage.corners(QString(), own, false, partner, false);
    const Corners there = stage.corners(QString(), partner, false, own, false);
    const QString difference = RyWeightStage::difference(stage.drawn(*stage.draw()), joined(there, here));
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void RyWeightDrawingTest::nothingToDraw_data()
{
    using Change = std::function<void(RyWeightStage &)>;
    QTest::addColumn<std::function<void(RyWeightStage &)>>("change");
    const auto add = [](const char *name, Change change) { QTest::newRow(name) << change; };
    add("weights off", [](RyWeightStage &stage) { stage.tool->setWeightVis(false); });
    add("no parameter", [](RyWeightStage &stage) { stage.tool->setParam(nullptr); });
    add("no facets", [](RyWeightStage &stage) { stage.doll.mesh()->setFacets({}); });
    add("no vertices", [](RyWeightStage &stage) {
        stage.doll.mesh()->setFacets({});
        stage.doll.mesh()->setPositions({});
    });
    add("no mesh", [](RyWeightStage &stage) {
        qobject_cast<RyFacetShape *>(stage.doll.figure->getObject()->getCurrentShape())->setFacetMesh(nullptr);
    });
    add("no object", [](RyWeightStage &stage) { stage.doll.figure->setObject(nullptr); });
    add("no binding", [](RyWeightStage &stage) { stage.doll.figure->getObject()->removeModifier(stage.doll.binding); });
    add("no such groups", [](RyWeightStage &stage) {
        for (const char *group : {"lHand", "lArm"})
            stage.doll.mesh()->removeFaceGroup(group);
    });
    add("empty groups", [](RyWeightStage &stage) {
        stage.doll.mesh()->setGroupsOfFacets(std::vector<int>(size_t(stage.doll.mesh()->getNumFacets()), 0));
    });
}

void RyWeightDrawingTest::nothingToDraw()
{
    QFETCH(std::function<void(RyWeightStage &)>, change);
    RyWeightStage stage;
    stage.use(stage.doll.lHand, "twistx");
    QVERIFY(!stage.draw()->elements.empty());
    stage.viewport->getCamera()->lookAt({0, 100, 400}, {0, 100, 0});
    change(stage);
    const auto recording = stage.draw();
    QVERIFY(recording->elements.empty());
    QCOMPARE(recording->others["glBufferData"], 0);
    QCOMPARE(recording->others["glBindFramebuffer"], 0); // nothing is laid over the scene either
}

void RyWeightDrawingTest::missingGroupIsTold()
{
    RyWeightStage stage;
    RyMainWindow window(ryScene());
    /// What the status line says after a drawing, and not yet within it.
    const auto toldByDrawing = [&] {
        window.statusBar()->clearMessage();
        const auto recording = stage.draw();
        const bool isSaidWithin = !window.statusBar()->currentMessage().isEmpty();
        QCoreApplication::sendPostedEvents();
        return isSaidWithin ? QStringLiteral("within the drawing") : window.statusBar()->currentMessage();
    };
    QCOMPARE(toldByDrawing(), QString());
    stage.doll.lHand->setLabel(QStringLiteral("Left Hand"));
    stage.doll.lArm->setLabel(QStringLiteral("Left Arm"));
    const QString hand =
        QStringLiteral("The vertex weights of Left Hand are not drawn: the mesh has no face group \"lHand\".");
    const QString arm =
        QStringLiteral("The vertex weights of Left Arm are not drawn: the mesh has no face group \"lArm\".");
    stage.doll.mesh()->removeFaceGroup("lHand");
    QCOMPARE(toldByDrawing(), hand);
    QCOMPARE(toldByDrawing(), QString()); // once
    stage.viewport->getCamera()->lookAt({0, 100, 400}, {0, 100, 0});
    RyLegacyJointParam *partner = stage.tool->partnerParam();
    const QString difference = RyWeightStage::difference(
        stage.drawn(*stage.draw()), stage.corners("lArm", partner, false, stage.tool->currentParam(), false));
    QVERIFY2(difference.isEmpty(), qPrintable(difference)); // the other side is drawn
    stage.tool->setWeightVis(false);
    QCOMPARE(toldByDrawing(), QString());
    stage.tool->setWeightVis(true);
    stage.draw(RyDrawingStage::PickPass);
    QCOMPARE(toldByDrawing(), hand);
    stage.doll.mesh()->removeFaceGroup("lArm");
    QCOMPARE(toldByDrawing(), hand + " " + arm);
}

void RyWeightDrawingTest::driverIsGone()
{
    RyWeightStage stage;
    RyLegacyJointParam *own = stage.use(stage.doll.lArm, "lHand_jointz");
    stage.draw();
    own->setDriver(nullptr);
    stage.viewport->getCamera()->lookAt({0, 100, 400}, {0, 100, 0});
    const Corners drawn = stage.drawn(*stage.draw());
    const Corners arm = stage.corners("lArm", own, false, nullptr, false);
    QVERIFY(drawn.size() >= arm.size());
    const QString difference = RyWeightStage::difference(Corners(drawn.end() - int(arm.size()), drawn.end()), arm);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
    for (const auto &corner : arm)
        QCOMPARE(corner.color.r, 230.0); // it acts on nothing
}

void RyWeightDrawingTest::lightingIsOff()
{
    RyWeightStage stage;
    for (const auto &elements : stage.draw()->elements) {
        QVERIFY(!elements.primitive.lighting);
        QVERIFY(elements.primitive.depthTest);
    }
}

void RyWeightDrawingTest::stateIsLeftAsItWas_data()
{
    modes_data();
}

void RyWeightDrawingTest::stateIsLeftAsItWas()
{
    QFETCH(int, mode);
    RyWeightStage stage;
    stage.tool->setWeightMapMode(mode);
    stage.draw(); // loads the matrices
    stage.use(stage.doll.lHand, "twistx");
    RyDrawingStage::setUncommonState();
    glPolygonOffset(3, 4);
    const auto state = [] {
        QVector<float> values = RyDrawingStage::glState();
        for (GLenum name : {GL_DRAW_FRAMEBUFFER_BINDING, GL_READ_FRAMEBUFFER_BINDING, GL_ARRAY_BUFFER_BINDING,
                            GL_ELEMENT_ARRAY_BUFFER_BINDING, GL_TEXTURE_BINDING_2D, GL_CURRENT_PROGRAM, GL_BLEND_SRC,
                            GL_BLEND_DST, GL_POLYGON_OFFSET_FACTOR, GL_CLIENT_ATTRIB_STACK_DEPTH}) {
            GLint value = 0;
            glGetIntegerv(name, &value);
            values.append(float(value));
        }
        GLint many[4] = {};
        for (GLenum name : {GL_VIEWPORT, GL_COLOR_WRITEMASK, GL_SCISSOR_BOX}) {
            glGetIntegerv(name, many);
            values << float(many[0]) << float(many[1]) << float(many[2]) << float(many[3]);
        }
        for (GLenum capability : {GL_VERTEX_ARRAY, GL_COLOR_ARRAY, GL_POLYGON_OFFSET_FILL, GL_TEXTURE_2D})
            values.append(float(glIsEnabled(capability)));
        return values;
    };
    while (glGetError() != GL_NO_ERROR) {
        // of other tests
    }
    const QVector<float> before = state();
    const auto recording = stage.draw();
    QVERIFY(!recording->elements.empty());
    QCOMPARE(state(), before);
    QCOMPARE(glGetError(), GLenum(GL_NO_ERROR));
    glPolygonOffset(0, 0);
    RyDrawingStage::setCommonState();
}

RY_TEST(RyWeightDrawingTest)

#include "tst_RyWeightDrawing.moc"
