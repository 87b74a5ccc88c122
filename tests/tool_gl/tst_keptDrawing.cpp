#include "support/RyTest.h"

#include "RyDrawingStage.h"

#include "pluginsource/RyJointTools/tool/drawing/RyToolDrawing.h"
#include "pluginsource/RyJointTools/tool/joint/RyJointState.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"

/// What the tool keeps from one drawing to the next is never out of date.
class RyKeptDrawingTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void bonesFollowEveryChange();
    void ghostsAreThoseOfWalksUp();
    void edgesOfAGroupAreKept();
};

void RyKeptDrawingTest::initTestCase()
{
    if (!RyDrawingStage::hasGL())
        QSKIP("no OpenGL here");
}

void RyKeptDrawingTest::bonesFollowEveryChange()
{
    RyDrawingStage stage;
    stage.pose();
    stage.viewport->getCamera()->lookAt({60, 120, 500}, {0, 60, 0});
    stage.tool->setGhostBones(true);
    stage.select(stage.lThigh);
    RyBone *toes = RyToolScene::makeBone(stage.lFoot, "toes", {11, 2, 13}, {11, 1, 16});
    using Change = std::function<void()>;
    const std::pair<const char *, Change> changes[] = {
        {"nothing", [] {}},
        {"origin",
         [&] {
             stage.lShin->setOrigin({12, 52, 3});
         }},
        {"end point",
         [&] {
             stage.lShin->setEndPoint({14, 5, 3});
         }},
        {"orientation",
         [&] {
             stage.lShin->setOrientation(RyQuat({0, 1, 0}, 0.4f));
         }},
        {"default end point",
         [&] {
             stage.rThigh->setEndPoint({-14, 45, 3}, true);
         }},
        {"default of a control", [&] { stage.lFoot->getOriginXControl()->setDefaultValue(13); }},
        {"pose", [&] { stage.hip->getXRotControl()->setValue(33); }},
        {"scale", [&] { stage.lThigh->getYScaleControl()->setValue(1.3f); }},
        {"scale that is not inherited", [&] { stage.lShin->setInheritScale(false); }},
        {"the figure's place", [&] { stage.figure->getXTransControl()->setValue(-12); }},
        {"rotation order", [&] { stage.lFoot->setRotationOrder(RyRotationOrder(4)); }},
        {"hidden", [&] { stage.lShin->setHidden(true); }},
        {"shown", [&] { stage.lShin->setHidden(false); }},
        {"another parent", [&] { stage.rThigh->addNodeChild(toes); }},
        {"a new bone",
         [&] {
             RyToolScene::makeBone(stage.hip, "more", {3, 90, 3}, {8, 80, 3});
         }},
        {"one less", [&] { ryScene()->removeNode(stage.rThigh); }},
        {"another node", [&] { stage.select(stage.lFoot); }},
        {"undo", [&] { ryUndoStack()->undo(); }},
        {"family", [&] { stage.tool->setBoneDrawMode(RyJointEditorTool::SelectedBoneAndFamily); }},
        {"no ghosts", [&] { stage.tool->setGhostBones(false); }},
    };
    std::vector<RyVec3> last;
    for (const auto &[name, change] : changes) {
        change();
        const auto kept = stage.draw();
        RyToolDrawing fresh;
        RyJointState joint;
        joint.node = stage.tool->currentNode();
        RyGLRecorder recorder;
        fresh.draw(stage.viewport.get(), false, joint, stage.tool->display(), 0);
        recorder.stop();
        const auto verticesOf = [](const RyGLRecorder &recording) {
            std::vector<RyVec3> vertices;
            for (const auto &primitive : recording.primitives)
                vertices.insert(vertices.end(), primitive.vertices.begin(), primitive.vertices.end());
            return vertices;
        };
        const std::vector<RyVec3> drawn = verticesOf(*kept);
        QVERIFY2(drawn == verticesOf(recorder), name);
        if (qstrcmp(name, "undo") != 0) // which there may be nothing for
            QVERIFY2(drawn != last, name);
        last = drawn;
    }
}

void RyKeptDrawingTest::ghostsAreThoseOfWalksUp()
{
    RyDrawingStage stage;
    stage.pose();
    stage.figure->getScaleControl()->setValue(1.4f);
    stage.lThigh->getXScaleControl()->setValue(0.7f);
    stage.lShin->setInheritScale(false);
    stage.lThigh->getXScaleControl()->setDefaultValue(0.8f);
    stage.hip->getYRotControl()->setDefaultValue(35.0f);
    stage.lShin->setOrigin({13, 55, 6});
    RyBoneFrames whole(true);
    whole.addBranches(stage.figure);
    QCOMPARE(whole.ghosts().size(), size_t(5));
    for (size_t i = 0; i < 5; ++i) {
        const RyBone *bone = whole.entries()[i].bone;
        const RyMatrix4 place = bone->getWSTransform(ryScene()->getTime(), true);
        const RyBoneFrame alone = RyBoneFrame::ofDefault(*bone, place);
        QVERIFY((whole.ghosts()[i].origin - place.translation()).length() < 1e-4f);
        QVERIFY((whole.ghosts()[i].tip() - alone.tip()).length() < 1e-4f);
        QVERIFY((whole.ghosts()[i].tip() - whole.entries()[i].frame.tip()).length() > 1e-1f);
    }
    RyBoneFrames family(true);
    family.addFamily(stage.lShin);
    QCOMPARE(family.ghosts().size(), size_t(3)); // the shin, the thigh, the foot
    QCOMPARE(family.ghosts()[0].tip(), whole.ghosts()[2].tip());
    QCOMPARE(family.ghosts()[1].tip(), whole.ghosts()[1].tip());
    QCOMPARE(family.ghosts()[2].tip(), whole.ghosts()[3].tip());
    QVERIFY(RyBoneFrames().ghosts().empty());
}

void RyKeptDrawingTest::edgesOfAGroupAreKept()
{
    RyDrawingStage stage;
    auto *mesh = new RyFacetMesh;
    mesh->setPositions({{0, 0, 0}, {10, 0, 0}, {20, 0, 0}, {0, 10, 0}, {10, 10, 0}, {20, 10, 0}});
    mesh->setFacets({{{0, 1, 4, 3}, -1}, {{1, 2, 5, 4}, -1}});
    mesh->createFaceGroup(QStringLiteral("left"));
    mesh->createFaceGroup(QStringLiteral("right"));
    mesh->setGroupsOfFacets({0, 1});
    auto *object = new RyObject;
    object->addShape(new RyFacetShape(mesh));
    stage.figure->setObject(object);
    auto *map = new RySelectionMap;
    map->addPair(QStringLiteral("left"), stage.lShin, true);
    map->addPair(QStringLiteral("right"), stage.lFoot, true);
    stage.figure->setSelectionMap(map);

    const RyJointToolDisplay display;
    const RyBoneIndex none;
    const RyDrawContext context{false, 0, display, nullptr, none, stage.viewport.get()};
    RyBoundaryEdges edges;
    const auto drawnEdges = [&](const RyNode &node) {
        RyGLRecorder recorder;
        RyBoundaryDrawing(context, edges).draw(node);
        recorder.stop();
        return recorder.count("glVertex3f") / 2;
    };
    QCOMPARE(drawnEdges(*stage.lShin), 4);
    edges.vertices.resize(6); // what is kept is drawn, not found anew
    QCOMPARE(drawnEdges(*stage.lShin), 3);
    QCOMPARE(drawnEdges(*stage.lFoot), 4);
    edges.vertices.resize(4);
    QCOMPARE(drawnEdges(*stage.lFoot), 2);
    QCOMPARE(drawnEdges(*stage.hip), 6); // the whole mesh
    QCOMPARE(drawnEdges(*stage.lShin), 4);
    mesh->setGroupsOfFacets({0, 0});
    QCOMPARE(drawnEdges(*stage.lShin), 6);
    mesh->removeFaceGroup(QStringLiteral("right"));
    QCOMPARE(drawnEdges(*stage.lShin), 6);
    mesh->setFacets({{{0, 1, 4, -1}, -1}});
    mesh->setGroupsOfFacets({0});
    QCOMPARE(drawnEdges(*stage.lShin), 3);
}

RY_TEST(RyKeptDrawingTest)

#include "tst_keptDrawing.moc"
