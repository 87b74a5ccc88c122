#include "support/RyNear.h"
#include "support/RyTest.h"

#include "RyDrawingStage.h"

namespace {

RyGLRecorder::Color bodyColor()
{
    return rgbaFloats(double(0.1f), double(0.1f), double(0.1f), double(0.2f));
}

} // namespace

/// Which bones are drawn, and what one looks like, as the recorder of GL calls sees them.
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
    void bodyShape();
    void stateOfABone();
    void bodyColors();
    void outline_data();
    void outline();
    void ring();
    void parentLinks();
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
        QVERIFY(corners[0] == RyVec3(0, 0, 0) || ryIsNear(corners[0], RyVec3(0, 30, 0), 5e-3f));
        for (int corner = 1; corner < 3; ++corner)
            QVERIFY(std::any_of(std::begin(waist), std::end(waist),
                                [&](const RyVec3 &w) { return ryIsNear(corners[corner], w, 5e-3f); }));
        // Neighbours around the waist, not opposite ones.
        QVERIFY(std::abs((corners[1] - corners[2]).length() - 3 * std::sqrt(2.0f)) < 1e-4f);
    }
    // Each upper and lower triangle once.
    for (const RyVec3 &apex : {RyVec3(0, 0, 0), RyVec3(0, 30, 0)}) {
        RyVec3 sum;
        int triangles = 0;
        for (size_t i = 0; i < 24; i += 3) {
            if (ryIsNear(body.vertices[i], apex, 5e-3f)) {
                sum += body.vertices[i + 1] + body.vertices[i + 2];
                ++triangles;
            }
        }
        QCOMPARE(triangles, 4);
        QVERIFY(ryIsNear(sum, RyVec3(0, 24, 0), 5e-3f));
    }
}

void RyBoneDrawingTest::stateOfABone()
{
    RyDrawingStage stage;
    stage.select(stage.lShin);
    stage.tool->setShowBoneHierarchy(false);
    const auto recording = stage.draw();
    const auto bodies = RyDrawingStage::bodies(*recording);
    QCOMPARE(bodies.size(), size_t(5));
    for (const auto &body : bodies) {
        QVERIFY(!body.lighting);
        QVERIFY(!body.depthTest);
        // The colour goes with the vertices of the body.
        QCOMPARE(recording->calls[size_t(body.firstCall) + 1].name, QByteArray("glColor4f"));
    }
    // Once before the first of them: the state, then white.
    const auto &calls = recording->calls;
    const auto first = size_t(bodies.front().firstCall);
    QVERIFY(calls[first - 1].is("glColor3ub", {255, 255, 255}));
    QVERIFY(calls[first - 2].is("glPushAttrib", {double(GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT)}));
    for (size_t call = first; call <= size_t(bodies.back().firstCall); ++call)
        QVERIFY(!calls[call].name.startsWith("glPush") && !calls[call].name.startsWith("glPop"));
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
        return p.vertices.size() == 16 && ryIsNear(p.vertices[3], RyVec3(30, 0, 0), 5e-3f);
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
    QCOMPARE(links.size(), size_t(1));
    QCOMPARE(links[0].mode, GLenum(GL_LINES));
    QCOMPARE(links[0].vertices.size(), 2 * std::size(bones));
    for (const auto &color : links[0].colors)
        QVERIFY(color.isNear(rgbaFloats(1, 1, 1, double(0.4f))));
    for (size_t i = 0; i < std::size(bones); ++i) {
        QVERIFY(ryIsNear(stage.world(links[0], 2 * i), bones[i]->getWSPos(), 5e-3f));
        QVERIFY(ryIsNear(stage.world(links[0], 2 * i + 1), bones[i]->getNodeParent()->getWSEndPoint(), 5e-3f));
    }
    QVERIFY(recording->contains("glLineStipple", {3, 0xAAAA}));
    stage.tool->setShowBoneHierarchy(false);
    QCOMPARE(stage.draw()->count("glLineStipple"), 0);
    stage.tool->setShowBoneHierarchy(true);
    QCOMPARE(stage.draw(RyDrawingStage::PickPass)->count("glLineStipple"), 0);
}

RY_TEST(RyBoneDrawingTest)
#include "tst_RyBoneDrawing.moc"
