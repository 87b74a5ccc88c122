#include "support/RyNear.h"
#include "support/RyTest.h"

#include "RyDrawingStage.h"

#include "pluginsource/RyJointTools/operations/alignNode.h"
#include "rycore/base/RyFloatProperty.h"

namespace {

/// Place of the bone's tip in the world: the vertex that all four lower triangles share.
RyVec3 tipOf(const RyDrawingStage &stage, const RyGLRecorder::Primitive &body)
{
    return stage.world(body, 3);
}

} // namespace

/// Where the tips of drawn bones lie: posed, turned, unaligned, at rest.
class RyBoneDirectionsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void tipIsThePosedEndPoint();
    void unalignedBoneMissesItsEnd();
    void backwards();
    void turnedAxes_data();
    void turnedAxes();
    void alignedBonesByTheirCoordinates();
    void ghosts();
};

void RyBoneDirectionsTest::initTestCase()
{
    if (!RyDrawingStage::hasGL())
        QSKIP("no OpenGL here");
}

void RyBoneDirectionsTest::tipIsThePosedEndPoint()
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
            QVERIFY2(ryIsNear(tipOf(stage, bodies[i]), bones[i]->getWSEndPoint(), 1e-2f),
                     qPrintable(bones[i]->getName()));
            QVERIFY(ryIsNear(stage.world(bodies[i], 0), bones[i]->getWSPos(), 1e-2f));
        }
    }
}

void RyBoneDirectionsTest::unalignedBoneMissesItsEnd()
{
    RyDrawingStage stage;
    stage.tool->setBoneDrawMode(RyJointEditorTool::SelectedBone);
    stage.select(stage.lShin);
    const auto bodies = RyDrawingStage::bodies(*stage.draw());
    // Along X, backwards, as long as it is: (-1, -42, -3) has the length sqrt(1774).
    QVERIFY(ryIsNear(tipOf(stage, bodies.at(0)), RyVec3(11.0f - std::sqrt(1774.0f), 50, 2), 5e-3f));
}

void RyBoneDirectionsTest::backwards()
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
    QVERIFY(ryIsNear(body.vertices[3], RyVec3(0, -std::sqrt(425.0f), 0), 5e-3f));
}

void RyBoneDirectionsTest::turnedAxes_data()
{
    QTest::addColumn<RyVec3>("about");
    QTest::addColumn<double>("degrees");
    QTest::addColumn<RyVec3>("way"); // where the first axis, Y, points then
    QTest::newRow("half turn about X") << RyVec3(1, 0, 0) << 180.0 << RyVec3(0, -1, 0);
    QTest::newRow("half turn about Z") << RyVec3(0, 0, 1) << 180.0 << RyVec3(0, -1, 0);
    QTest::newRow("almost") << RyVec3(0, 0, 1) << 170.0 << RyVec3(0, 0, 0);
    QTest::newRow("not turned") << RyVec3(1, 0, 0) << 0.0 << RyVec3(0, 1, 0);
}

void RyBoneDirectionsTest::turnedAxes()
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
    QVERIFY(ryIsNear(bone->getOrientation().multVec(RyVec3(0, 1, 0)), way, 1e-5f));
    stage.select(bone);
    const auto body = RyDrawingStage::bodies(*stage.draw()).at(0);
    // The end point is below the origin, and so is the tip, since the bone's own axis points down.
    QVERIFY(ryIsNear(tipOf(stage, body), origin + way * 25.0f, 1e-2f));
    QVERIFY(ryIsNear(stage.world(body, 0), origin, 1e-2f));

    // The other way round it is drawn against its axis.
    bone->setEndPoint(origin - way * 25.0f);
    QVERIFY(ryIsNear(tipOf(stage, RyDrawingStage::bodies(*stage.draw()).at(0)), origin - way * 25.0f, 1e-2f));

    // Posed: the same places through plain matrices, of the figure's turn about Y and its way along X.
    bone->setEndPoint(origin + way * 25.0f);
    stage.figure->getYRotControl()->setValue(40.0f);
    stage.figure->getXTransControl()->setValue(7.0f);
    const double c = std::cos(40.0 * M_PI / 180.0);
    const double s = std::sin(40.0 * M_PI / 180.0);
    const RyVec3 end = origin + way * 25.0f;
    const RyVec3 expected(float(c * double(end.x) + s * double(end.z) + 7.0), end.y,
                          float(-s * double(end.x) + c * double(end.z)));
    QVERIFY(ryIsNear(tipOf(stage, RyDrawingStage::bodies(*stage.draw()).at(0)), expected, 1e-2f));
}

void RyBoneDirectionsTest::alignedBonesByTheirCoordinates()
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
            QVERIFY(ryIsNear(tipOf(stage, body), end, 1e-2f));
        }
    }
}

void RyBoneDirectionsTest::ghosts()
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
        QVERIFY2(ryIsNear(tipOf(stage, ghosts[i]), expected, 2e-2f), qPrintable(bones[i]->getName()));
    }
    QCOMPARE(RyDrawingStage::bodies(*stage.draw(RyDrawingStage::PickPass)).size(), size_t(5));

    // Which way a ghost points is taken from the current values: this one is turned round by them.
    stage.lShin->setEndPoint({11.5f, 90, 4});
    const auto turned = RyDrawingStage::bodies(*stage.draw()).at(5); // after three pairs of a bone and its ghost
    QVERIFY(turned.color().isNear(ghost));
    const RyVec3 origin = stage.lShin->getOrigin(true);
    const RyVec3 opposite = origin + (origin - stage.lShin->getEndPoint(true));
    QVERIFY(ryIsNear(tipOf(stage, turned), stage.figure->worldMap().mapPoint(opposite), 2e-2f));
}

RY_TEST(RyBoneDirectionsTest)
#include "tst_boneDirections.moc"
