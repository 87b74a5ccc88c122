#include "support/RyTest.h"

#include "RyDrawingStage.h"

#include "pluginsource/RyJointTools/operations/alignNode.h"
#include "pluginsource/RyJointTools/tool/drawing/RyBoneDrawing.h"
#include "rycore/base/RyFloatProperty.h"

namespace {

bool isNear(const RyVec3 &a, const RyVec3 &b, float tolerance = 5e-3f)
{
    return (a - b).length() <= tolerance;
}

/// Place of the bone's tip in the world: the vertex that all four lower triangles share.
RyVec3 tipOf(const RyDrawingStage &stage, const RyGLRecorder::Primitive &body)
{
    return stage.world(body, 3);
}

RyGLRecorder::Color bodyColor()
{
    return rgbaFloats(double(0.1f), double(0.1f), double(0.1f), double(0.2f));
}

} // namespace

/// Bones as the recorder of GL calls sees them.
class RyBoneDrawingTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void nothingWithoutNode();
    void modes_data();
    void modes();
    void wholeFigureSkipsOthers();
    void hiddenBones();
    void tipIsThePosedEndPoint();
    void unalignedBoneMissesItsEnd();
    void backwards();
    void turnedAxes_data();
    void turnedAxes();
    void alignedBonesByTheirCoordinates();
    void bodyShape();
    void stateOfABone();
    void bodyColors();
    void outline_data();
    void outline();
    void ring();
    void ghosts();
    void parentLinks();
    void pickColors();
    void pickListIsRefilled();
    void bonesOutsideTheListAreNotDrawn();
    void idsWrapBeyondTheByte();
};

void RyBoneDrawingTest::initTestCase()
{
    if (!RyDrawingStage::hasGL())
        QSKIP("no OpenGL here");
}

void RyBoneDrawingTest::nothingWithoutNode()
{
    RyDrawingStage stage;
    stage.manager->setActiveTool(stage.tool);
    for (int style : {3, 11})
        QCOMPARE(int(stage.draw(style)->calls.size()), 0);
}

void RyBoneDrawingTest::modes_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("node");
    QTest::addColumn<QList<int>>("bones"); // ids in order of drawing
    QTest::newRow("none") << 0 << "lThigh" << QList<int>{};
    QTest::newRow("other") << 7 << "lThigh" << QList<int>{};
    QTest::newRow("selected") << 1 << "lThigh" << QList<int>{48};
    QTest::newRow("selected, no bone") << 1 << "figure" << QList<int>{};
    QTest::newRow("family") << 2 << "lThigh" << QList<int>{48, 47, 49};
    QTest::newRow("family of the root") << 2 << "hip" << QList<int>{47, 48, 51};
    QTest::newRow("family, no bone") << 2 << "figure" << QList<int>{};
    QTest::newRow("all") << 3 << "lThigh" << QList<int>{47, 48, 49, 50, 51};
    QTest::newRow("all of the figure") << 3 << "figure" << QList<int>{47, 48, 49, 50, 51};
    QTest::newRow("no skeleton") << 3 << "prop" << QList<int>{};
}

void RyBoneDrawingTest::modes()
{
    QFETCH(int, mode);
    QFETCH(QString, node);
    QFETCH(QList<int>, bones);
    RyDrawingStage stage;
    stage.tool->setBoneDrawMode(RyJointEditorTool::BoneDrawMode(mode));
    stage.select(ryScene()->findNode(node));
    const auto pick = stage.draw(RyDrawingStage::PickPass);
    QList<int> drawn;
    for (const auto &body : RyDrawingStage::bodies(*pick))
        drawn.append(int(body.color().r));
    QCOMPARE(drawn, bones);
    QCOMPARE(int(RyDrawingStage::bodies(*stage.draw()).size()), bones.size());
}

void RyBoneDrawingTest::wholeFigureSkipsOthers()
{
    RyDrawingStage stage;
    auto *between = new RyNode;
    stage.hip->addNodeChild(between, false, 0);
    RyToolScene::makeBone(between, "beyond", {0, 0, 0}, {0, 5, 0});
    stage.select(stage.lShin);
    // "beyond" is in the list, and so has an id, but nothing leads to it through bones only.
    QList<int> drawn;
    for (const auto &body : RyDrawingStage::bodies(*stage.draw(RyDrawingStage::PickPass)))
        drawn.append(int(body.color().r));
    QCOMPARE(drawn, (QList<int>{47, 49, 50, 51, 52}));
    QCOMPARE(stage.tool->bones().count(), 6);
}

void RyBoneDrawingTest::hiddenBones()
{
    RyDrawingStage stage;
    stage.select(stage.hip);
    stage.lShin->setHidden(true); // its foot goes with it
    QCOMPARE(int(RyDrawingStage::bodies(*stage.draw()).size()), 3);
    stage.figure->setHidden(true);
    QCOMPARE(int(RyDrawingStage::bodies(*stage.draw()).size()), 0);
}

void RyBoneDrawingTest::tipIsThePosedEndPoint()
{
    for (int order = 0; order < 6; ++order) {
        RyDrawingStage stage;
        for (RyBone *bone : {stage.hip, stage.lThigh, stage.lShin, stage.lFoot, stage.rThigh}) {
            bone->setRotationOrder(RyRotationOrder(order));
            alignNode(bone);
        }
        stage.pose();
        stage.lThigh->getYScaleControl()->setValue(1.2f);
        stage.select(stage.hip);
        const auto bodies = RyDrawingStage::bodies(*stage.draw());
        const RyBone *const bones[] = {stage.hip, stage.lThigh, stage.lShin, stage.lFoot, stage.rThigh};
        QCOMPARE(bodies.size(), std::size(bones));
        for (size_t i = 0; i < bodies.size(); ++i) {
            QVERIFY2(isNear(tipOf(stage, bodies[i]), bones[i]->getWSEndPoint(), 1e-2f),
                     qPrintable(bones[i]->getName()));
            QVERIFY(isNear(stage.world(bodies[i], 0), bones[i]->getWSPos(), 1e-2f));
        }
    }
}

void RyBoneDrawingTest::unalignedBoneMissesItsEnd()
{
    RyDrawingStage stage;
    stage.tool->setBoneDrawMode(RyJointEditorTool::SelectedBone);
    stage.select(stage.lShin);
    const auto bodies = RyDrawingStage::bodies(*stage.draw());
    // Along X, backwards, as long as it is: (-1, -42, -3) has the length sqrt(1774).
    QVERIFY(isNear(tipOf(stage, bodies.at(0)), RyVec3(11.0f - std::sqrt(1774.0f), 50, 2)));
}

void RyBoneDrawingTest::backwards()
{
    RyDrawingStage stage;
    stage.tool->setBoneDrawMode(RyJointEditorTool::SelectedBone);
    stage.select(stage.prop);
    RyBone *bone = RyToolScene::makeBone(stage.figure, "back", {0, 0, 0}, {-20, 0, 0});
    stage.select(bone);
    auto body = RyDrawingStage::bodies(*stage.draw()).at(0);
    QCOMPARE(body.vertices[3], RyVec3(-20, 0, 0));
    bone->setEndPoint({20, -5, 0}); // first axis X: forwards
    body = RyDrawingStage::bodies(*stage.draw()).at(0);
    QVERIFY(body.vertices[3].x > 0);
    bone->setRotationOrder(RyRotationOrder(2)); // YXZ: backwards along Y
    body = RyDrawingStage::bodies(*stage.draw()).at(0);
    QVERIFY(isNear(body.vertices[3], RyVec3(0, -std::sqrt(425.0f), 0)));
}

void RyBoneDrawingTest::turnedAxes_data()
{
    QTest::addColumn<RyVec3>("about");
    QTest::addColumn<double>("degrees");
    QTest::addColumn<RyVec3>("way"); // where the first axis, Y, points then
    QTest::newRow("half turn about X") << RyVec3(1, 0, 0) << 180.0 << RyVec3(0, -1, 0);
    QTest::newRow("half turn about Z") << RyVec3(0, 0, 1) << 180.0 << RyVec3(0, -1, 0);
    QTest::newRow("almost") << RyVec3(0, 0, 1) << 170.0 << RyVec3(0, 0, 0);
    QTest::newRow("not turned") << RyVec3(1, 0, 0) << 0.0 << RyVec3(0, 1, 0);
}

void RyBoneDrawingTest::turnedAxes()
{
    QFETCH(RyVec3, about);
    QFETCH(double, degrees);
    QFETCH(RyVec3, way);
    RyDrawingStage stage;
    stage.tool->setBoneDrawMode(RyJointEditorTool::SelectedBone);
    // Orientations take left-handed angles; half a turn is the same either way round.
    const double angle = degrees * M_PI / 180.0;
    const RyQuat turn(about, float(-angle));
    if (way == RyVec3())
        way = RyVec3(float(-std::sin(angle)), float(std::cos(angle)), 0);
    const RyVec3 origin(4, 60, -3);
    RyBone *bone = RyToolScene::makeBone(stage.figure, "turned", origin, origin + way * 25.0f);
    bone->setRotationOrder(RyRotationOrder(3)); // YZX
    bone->setOrientation(turn, true);
    QVERIFY(isNear(bone->getOrientation().multVec(RyVec3(0, 1, 0)), way, 1e-5f));
    stage.select(bone);
    const auto body = RyDrawingStage::bodies(*stage.draw()).at(0);
    // The end point is below the origin, and so is the tip, since the bone's own axis points down.
    QVERIFY(isNear(tipOf(stage, body), origin + way * 25.0f, 1e-2f));
    QVERIFY(isNear(stage.world(body, 0), origin, 1e-2f));

    // The other way round it is drawn against its axis.
    bone->setEndPoint(origin - way * 25.0f);
    QVERIFY(isNear(tipOf(stage, RyDrawingStage::bodies(*stage.draw()).at(0)), origin - way * 25.0f, 1e-2f));

    // Posed: the same places through plain matrices, of the figure's turn about Y and its way along X.
    bone->setEndPoint(origin + way * 25.0f);
    stage.figure->getYRotControl()->setValue(40.0f);
    stage.figure->getXTransControl()->setValue(7.0f);
    const double c = std::cos(40.0 * M_PI / 180.0);
    const double s = std::sin(40.0 * M_PI / 180.0);
    const RyVec3 end = origin + way * 25.0f;
    const RyVec3 expected(float(c * double(end.x) + s * double(end.z) + 7.0), end.y,
                          float(-s * double(end.x) + c * double(end.z)));
    QVERIFY(isNear(tipOf(stage, RyDrawingStage::bodies(*stage.draw()).at(0)), expected, 1e-2f));
}

void RyBoneDrawingTest::alignedBonesByTheirCoordinates()
{
    RyDrawingStage stage;
    stage.tool->setBoneDrawMode(RyJointEditorTool::SelectedBone);
    RyBone *bone = RyToolScene::makeBone(stage.figure, "aligned", {0, 0, 0}, {1, 0, 0});
    stage.select(bone);
    const RyVec3 ends[] = {{20, 5, -3}, {-20, 5, -3}, {3, 20, 9}, {3, -20, 9}, {-5, 7, 20}, {5, 7, -20}};
    for (int order = 0; order < 6; ++order) {
        bone->setRotationOrder(RyRotationOrder(order));
        const int first = bone->getRotationOrder()[0];
        for (const RyVec3 &end : ends) {
            bone->setEndPoint(end);
            alignNode(bone);
            const auto body = RyDrawingStage::bodies(*stage.draw()).at(0);
            QVERIFY(body.vertices[3][first] * end[first] > 0.0f);
            QVERIFY(isNear(tipOf(stage, body), end, 1e-2f));
        }
    }
}

void RyBoneDrawingTest::bodyShape()
{
    RyDrawingStage stage;
    stage.tool->setBoneDrawMode(RyJointEditorTool::SelectedBone);
    RyBone *bone = RyToolScene::makeBone(stage.figure, "plain", {0, 0, 0}, {0, 30, 0});
    bone->setRotationOrder(RyRotationOrder(3)); // YZX
    stage.select(bone);
    const auto body = RyDrawingStage::bodies(*stage.draw()).at(0);
    const RyVec3 waist[] = {{0, 3, 3}, {3, 3, 0}, {0, 3, -3}, {-3, 3, 0}};
    for (int triangle = 0; triangle < 8; ++triangle) {
        const RyVec3 corners[3] = {body.vertices[size_t(3 * triangle)], body.vertices[size_t(3 * triangle + 1)],
                                   body.vertices[size_t(3 * triangle + 2)]};
        QVERIFY(corners[0] == RyVec3(0, 0, 0) || isNear(corners[0], RyVec3(0, 30, 0)));
        for (int corner = 1; corner < 3; ++corner)
            QVERIFY(std::any_of(std::begin(waist), std::end(waist),
                                [&](const RyVec3 &w) { return isNear(corners[corner], w); }));
        // Neighbours around the waist, not opposite ones.
        QVERIFY(std::abs((corners[1] - corners[2]).length() - 3 * std::sqrt(2.0f)) < 1e-4f);
    }
    // Each upper and lower triangle once.
    for (const RyVec3 &apex : {RyVec3(0, 0, 0), RyVec3(0, 30, 0)}) {
        RyVec3 sum;
        int triangles = 0;
        for (size_t i = 0; i < 24; i += 3) {
            if (isNear(body.vertices[i], apex)) {
                sum += body.vertices[i + 1] + body.vertices[i + 2];
                ++triangles;
            }
        }
        QCOMPARE(triangles, 4);
        QVERIFY(isNear(sum, RyVec3(0, 24, 0)));
    }
}

void RyBoneDrawingTest::stateOfABone()
{
    RyDrawingStage stage;
    stage.select(stage.lShin);
    const auto recording = stage.draw();
    for (const auto &body : RyDrawingStage::bodies(*recording)) {
        QVERIFY(!body.lighting);
        QVERIFY(!body.depthTest);
        // White, then the colour of the body, then the body.
        const auto &calls = recording->calls;
        QCOMPARE(calls[size_t(body.firstCall) - 1].name, QByteArray("glColor4f"));
        QVERIFY(calls[size_t(body.firstCall) - 2].is("glColor3ub", {255, 255, 255}));
        QCOMPARE(calls[size_t(body.firstCall) - 3].name, QByteArray("glMultMatrixf"));
        QCOMPARE(calls[size_t(body.firstCall) - 4].name, QByteArray("glPushMatrix"));
        QVERIFY(calls[size_t(body.firstCall) - 5].is("glPushAttrib", {double(GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT)}));
    }
    QCOMPARE(recording->count("glPushMatrix"), recording->count("glPopMatrix"));
    QCOMPARE(recording->count("glPushAttrib"), recording->count("glPopAttrib"));
}

void RyBoneDrawingTest::bodyColors()
{
    RyDrawingStage stage;
    stage.tool->setSelectedColor(QColor(0, 51, 255));
    stage.select(stage.lThigh);
    const auto bodies = RyDrawingStage::bodies(*stage.draw());
    QCOMPARE(bodies.size(), size_t(5));
    for (size_t i = 0; i < bodies.size(); ++i)
        QVERIFY(bodies[i].color().isNear(i == 1 ? rgbaFloats(0, 0.2, 1, double(0.2f)) : bodyColor()));
}

void RyBoneDrawingTest::outline_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<bool>("current");
    for (int style : {0, 1}) {
        for (bool current : {false, true})
            QTest::addRow("style %d, %s", style, current ? "current" : "other") << style << current;
    }
}

void RyBoneDrawingTest::outline()
{
    QFETCH(int, style);
    QFETCH(bool, current);
    RyDrawingStage stage;
    stage.tool->setBoneColoringStyle(style);
    stage.tool->setShowBoneHierarchy(false);
    RyBone *bone = RyToolScene::makeBone(stage.figure, "plain", {0, 0, 0}, {30, 0, 0});
    bone->setRotationOrder(RyRotationOrder(1)); // XZY
    stage.tool->setBoneDrawMode(current ? RyJointEditorTool::SelectedBone : RyJointEditorTool::SelectedBoneAndFamily);
    if (!current)
        stage.hip->addNodeChild(bone); // drawn as a child of the hip
    stage.select(current ? bone : stage.hip);
    const auto recording = stage.draw();
    const auto all = recording->ofMode(GL_LINES);
    const auto found = std::find_if(all.begin(), all.end(), [](const RyGLRecorder::Primitive &p) {
        return p.vertices.size() == 16 && isNear(p.vertices[3], RyVec3(30, 0, 0));
    });
    QVERIFY(found != all.end());
    const double alpha = current ? 1.0 : double(0.4f);
    int sides = 0;
    for (size_t i = 0; i < 16; i += 4) {
        QCOMPARE(found->vertices[i], RyVec3(0, 0, 0));
        QCOMPARE(found->vertices[i + 1], found->vertices[i + 2]);
        QCOMPARE(found->vertices[i + 3], RyVec3(30, 0, 0));
        const RyVec3 side = found->vertices[i + 1] - RyVec3(3, 0, 0);
        QVERIFY(std::abs(side.length() - 3.0f) < 1e-5f);
        const bool alongZ = std::abs(side.z) > 1.0f;
        const RyGLRecorder::Color expected = style == 0 ? rgbaFloats(1, 1, 1, alpha)
                                             : alongZ   ? rgbaFloats(0, 0, 1, alpha)
                                                        : rgbaFloats(0, 1, 0, alpha);
        for (size_t k = 0; k < 4; ++k)
            QVERIFY(found->colors[i + k].isNear(expected));
        sides += alongZ ? (side.z > 0 ? 1 : 2) : (side.y > 0 ? 4 : 8);
    }
    QCOMPARE(sides, 15);
}

void RyBoneDrawingTest::ring()
{
    for (int style : {0, 1}) {
        RyDrawingStage stage;
        stage.tool->setBoneColoringStyle(style);
        stage.tool->setBoneDrawMode(RyJointEditorTool::SelectedBone);
        RyBone *bone = RyToolScene::makeBone(stage.figure, "plain", {0, 0, 0}, {0, 0, 20});
        bone->setRotationOrder(RyRotationOrder(4)); // ZXY
        stage.select(bone);
        const auto rings = stage.draw()->ofMode(GL_LINE_LOOP);
        QCOMPARE(rings.size(), size_t(1));
        QCOMPARE(rings[0].vertices.size(), size_t(30));
        QVERIFY(rings[0].color().isNear(style == 1 ? rgbaFloats(0, 0, 1, 1) : rgbaFloats(1, 1, 1, 1)));
        for (const RyVec3 &vertex : rings[0].vertices) {
            QVERIFY(std::abs(vertex.z - 2.0f) < 1e-5f);
            QVERIFY(std::abs(std::hypot(vertex.x, vertex.y) - 2.0f) < 1e-5f);
        }
    }
}

void RyBoneDrawingTest::ghosts()
{
    RyDrawingStage stage;
    for (RyBone *bone : {stage.hip, stage.lThigh, stage.lShin, stage.lFoot, stage.rThigh}) {
        alignNode(bone);
        bone->setOrientation(bone->getOrientation(), true);
    }
    stage.pose();
    stage.lShin->setEndPoint({10.5f, 10, 0});
    stage.tool->setStaticColor(QColor(0, 255, 51));
    stage.tool->setGhostBones(true);
    stage.select(stage.hip);
    const auto recording = stage.draw();
    const auto ghost = rgbaFloats(0, 1, 0.2, double(0.2f));
    std::vector<RyGLRecorder::Primitive> ghosts;
    for (const auto &body : RyDrawingStage::bodies(*recording)) {
        if (body.color().isNear(ghost))
            ghosts.push_back(body);
    }
    const RyBone *const bones[] = {stage.hip, stage.lThigh, stage.lShin, stage.lFoot, stage.rThigh};
    QCOMPARE(ghosts.size(), std::size(bones));
    QCOMPARE(RyDrawingStage::bodies(*recording).size(), size_t(10));
    for (size_t i = 0; i < ghosts.size(); ++i) {
        // Unposed, on the moved and turned figure: the rest end point through the figure's own map.
        const RyVec3 expected = stage.figure->worldMap().mapPoint(bones[i]->getEndPoint(true));
        QVERIFY2(isNear(tipOf(stage, ghosts[i]), expected, 2e-2f), qPrintable(bones[i]->getName()));
    }
    QCOMPARE(RyDrawingStage::bodies(*stage.draw(RyDrawingStage::PickPass)).size(), size_t(5));

    // Which way a ghost points is taken from the current values: this one is turned round by them.
    stage.lShin->setEndPoint({11.5f, 90, 4});
    const auto turned = RyDrawingStage::bodies(*stage.draw()).at(5); // after three pairs of a bone and its ghost
    QVERIFY(turned.color().isNear(ghost));
    const RyVec3 origin = stage.lShin->getOrigin(true);
    const RyVec3 opposite = origin + (origin - stage.lShin->getEndPoint(true));
    QVERIFY(isNear(tipOf(stage, turned), stage.figure->worldMap().mapPoint(opposite), 2e-2f));
}

void RyBoneDrawingTest::parentLinks()
{
    RyDrawingStage stage;
    stage.pose();
    stage.select(stage.hip);
    const auto recording = stage.draw();
    std::vector<RyGLRecorder::Primitive> links;
    for (const auto &primitive : recording->primitives) {
        if (primitive.stipple)
            links.push_back(primitive);
    }
    const RyBone *const bones[] = {stage.lThigh, stage.lShin, stage.lFoot, stage.rThigh}; // the hip hangs on the figure
    QCOMPARE(links.size(), std::size(bones));
    for (size_t i = 0; i < links.size(); ++i) {
        QCOMPARE(links[i].mode, GLenum(GL_LINES));
        QCOMPARE(links[i].vertices.size(), size_t(2));
        QVERIFY(links[i].color().isNear(rgbaFloats(1, 1, 1, double(0.4f))));
        QVERIFY(isNear(stage.world(links[i], 0), bones[i]->getWSPos()));
        QVERIFY(isNear(stage.world(links[i], 1), bones[i]->getNodeParent()->getWSEndPoint()));
    }
    QVERIFY(recording->contains("glLineStipple", {3, 0xAAAA}));
    stage.tool->setShowBoneHierarchy(false);
    QCOMPARE(stage.draw()->count("glLineStipple"), 0);
    stage.tool->setShowBoneHierarchy(true);
    QCOMPARE(stage.draw(RyDrawingStage::PickPass)->count("glLineStipple"), 0);
}

void RyBoneDrawingTest::pickColors()
{
    RyDrawingStage stage;
    stage.tool->setGhostBones(true);
    stage.select(stage.lShin);
    const auto recording = stage.draw(RyDrawingStage::PickPass);
    QVERIFY(!recording->primitives.empty());
    // Every colour that is ever set is an id.
    for (const auto &call : recording->calls) {
        if (call.name.startsWith("glColor")) {
            QCOMPARE(call.name, QByteArray("glColor3ub"));
            QCOMPARE(call.arguments.at(1), 0.0);
            QCOMPARE(call.arguments.at(2), 128.0);
            QVERIFY(call.arguments.at(0) >= 1);
        }
    }
    const auto bodies = RyDrawingStage::bodies(*recording);
    for (size_t i = 0; i < bodies.size(); ++i) {
        for (const auto &color : bodies[i].colors)
            QCOMPARE(color, rgbBytes(47 + int(i), 0, 128));
    }
    QCOMPARE(recording->ofMode(GL_LINE_LOOP).size(), size_t(0));
}

void RyBoneDrawingTest::pickListIsRefilled()
{
    RyDrawingStage stage;
    stage.select(stage.lShin);
    stage.draw();
    QCOMPARE(stage.tool->bones().count(), 0);
    stage.draw(RyDrawingStage::PickPass);
    QCOMPARE(stage.tool->bones().count(), 5);
    QCOMPARE(stage.tool->bones().find(stage.lFoot), 3);
    RyBone *toes = RyToolScene::makeBone(stage.lFoot, "toes", {11, 2, 13}, {11, 1, 16});
    stage.draw();
    QCOMPARE(stage.tool->bones().count(), 5);
    stage.draw(RyDrawingStage::PickPass);
    QCOMPARE(stage.tool->bones().find(toes), 4);
    QCOMPARE(stage.tool->bones().find(stage.rThigh), 5);
    QCOMPARE(stage.tool->bones().boneAt(4, stage.figure), toes);
    stage.select(stage.prop);
    stage.draw(RyDrawingStage::PickPass);
    QCOMPARE(stage.tool->bones().count(), 0);
}

void RyBoneDrawingTest::bonesOutsideTheListAreNotDrawn()
{
    RyDrawingStage stage;
    const RyJointToolDisplay display;
    const RyBoneIndex empty;
    const RyDrawContext context{true, 0, display, stage.lShin, empty, stage.viewport.get()};
    RyGLRecorder recorder;
    RyBoneDrawing(context).drawBone(*stage.lShin);
    recorder.stop();
    QCOMPARE(int(recorder.primitives.size()), 0);
    QCOMPARE(recorder.count("glColor3ub"), 0);
}

void RyBoneDrawingTest::idsWrapBeyondTheByte()
{
    RyDrawingStage stage;
    for (int i = 5; i < 215; ++i)
        RyToolScene::makeBone(stage.rThigh, "more", {-11, 50, 2}, {-11.0f, 50.0f + float(i), 2});
    stage.select(stage.hip);
    const auto bodies = RyDrawingStage::bodies(*stage.draw(RyDrawingStage::PickPass));
    QCOMPARE(bodies.size(), size_t(215));
    QCOMPARE(bodies[208].color(), rgbBytes(255, 0, 128));
    QCOMPARE(bodies[209].color(), rgbBytes(0, 0, 128));
    QCOMPARE(bodies[210].color(), rgbBytes(1, 0, 128));
}

RY_TEST(RyBoneDrawingTest)

#include "tst_RyBoneDrawing.moc"
