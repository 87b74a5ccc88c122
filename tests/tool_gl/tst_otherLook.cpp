#include "support/RyNear.h"
#include "support/RyTest.h"

#include "RyDrawingStage.h"

#include "pluginsource/RyJointTools/operations/alignNode.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleFrame.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"

/// Drawings of bones whose values at rest, poses and rotation orders are none that a new bone has.
class RyOtherLookTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void ghostsAreOfTheRestValues();
    void ringsHaveTheColorOfTheirAxis_data();
    void ringsHaveTheColorOfTheirAxis();
    void conesKeepTheirSizeOnScaledNodes();
    void baseToolsHighlightIsDrawn();
};

void RyOtherLookTest::initTestCase()
{
    if (!RyDrawingStage::hasGL())
        QSKIP("no OpenGL here");
}

void RyOtherLookTest::ghostsAreOfTheRestValues()
{
    RyDrawingStage stage;
    stage.pose();
    RyBone *bone = stage.lShin;
    bone->setRotationOrder(RyRotationOrder(3)); // YZX
    alignNode(bone);
    bone->setOrientation(bone->getOrientation(), true);
    // All three current values are others.
    bone->setOrigin({13, 55, 6});
    bone->setEndPoint({9, 20, -5});
    alignNode(bone);
    QVERIFY(!(bone->getOrientation() == bone->getOrientation(true)));
    stage.tool->setStaticColor(QColor(0, 51, 255));
    stage.tool->setGhostBones(true);
    stage.tool->setBoneDrawMode(RyJointEditorTool::SelectedBone);
    stage.select(bone);
    const auto bodies = RyDrawingStage::bodies(*stage.draw());
    QCOMPARE(bodies.size(), size_t(2));
    const auto tipOf = [&](const RyGLRecorder::Primitive &body) {
        RyVec3 farthest = stage.world(body, 0);
        const RyVec3 start = farthest;
        for (size_t i = 1; i < body.vertices.size(); ++i) {
            if ((stage.world(body, i) - start).length() > (farthest - start).length())
                farthest = stage.world(body, i);
        }
        return farthest;
    };
    QVERIFY(bodies[1].color().isNear(rgbaFloats(0, 0.2, 1, double(0.2f))));
    const RyAffine &map = stage.figure->worldMap();
    QVERIFY(ryIsNear(stage.world(bodies[1], 0), map.mapPoint(bone->getOrigin(true)), 1e-2f));
    QVERIFY(ryIsNear(tipOf(bodies[1]), map.mapPoint(bone->getEndPoint(true)), 2e-2f));
    QVERIFY(ryIsNear(stage.world(bodies[0], 0), bone->getWSPos(), 1e-2f));
    QVERIFY(ryIsNear(tipOf(bodies[0]), bone->getWSEndPoint(), 2e-2f));
    // The waist of a ghost is a tenth of its own length.
    const float restLength = (bone->getEndPoint(true) - bone->getOrigin(true)).length();
    const float length = (bone->getEndPoint() - bone->getOrigin()).length();
    QVERIFY(std::abs(restLength - length) > 1.0f);
    const auto waist = [&](const RyGLRecorder::Primitive &body) {
        const RyVec3 start = stage.world(body, 0);
        const RyVec3 along = (tipOf(body) - start).normalized();
        float widest = 0;
        for (size_t i = 0; i < body.vertices.size(); ++i) {
            const RyVec3 way = stage.world(body, i) - start;
            widest = std::max(widest, (way - along * way.dot(along)).length());
        }
        return widest;
    };
    QVERIFY(std::abs(waist(bodies[1]) - restLength / 10) < 1e-3f);
    QVERIFY(std::abs(waist(bodies[0]) - length / 10) < 1e-3f);
}

void RyOtherLookTest::ringsHaveTheColorOfTheirAxis_data()
{
    QTest::addColumn<int>("order");
    QTest::addColumn<bool>("current");
    for (int order = 0; order < 6; ++order) {
        QTest::addRow("%d, current", order) << order << true;
        QTest::addRow("%d, other", order) << order << false;
    }
}

void RyOtherLookTest::ringsHaveTheColorOfTheirAxis()
{
    QFETCH(int, order);
    QFETCH(bool, current);
    RyDrawingStage stage;
    stage.pose();
    for (RyBone *bone : stage.figure->getAllBones()) {
        bone->setRotationOrder(RyRotationOrder((order + 2) % 6)); // another first axis
        alignNode(bone);
    }
    stage.rThigh->setRotationOrder(RyRotationOrder(order));
    alignNode(stage.rThigh);
    stage.select(current ? stage.rThigh : stage.hip);
    const auto rings = stage.draw()->ofMode(GL_LINE_LOOP);
    QCOMPARE(rings.size(), size_t(5));
    const int first = RyRotationOrder(order)[0];
    // The right thigh is the last one in the tree.
    const auto &ring = rings[4];
    QVERIFY(ring.color().isNear(rgbaFloats(first == 0, first == 1, first == 2, current ? 1.0 : double(0.4f))));
    const float width = (stage.rThigh->getEndPoint() - stage.rThigh->getOrigin()).length() / 10;
    const RyVec3 start = stage.rThigh->getWSPos();
    const RyVec3 along = (stage.rThigh->getWSEndPoint() - start).normalized();
    for (size_t i = 0; i < ring.vertices.size(); ++i) {
        const RyVec3 way = stage.world(ring, i) - start;
        QVERIFY(std::abs(way.dot(along) - width) < 5e-3f);
        QVERIFY(std::abs((way - along * way.dot(along)).length() - width) < 5e-3f);
    }
    const int others = RyRotationOrder((order + 2) % 6)[0];
    QVERIFY(others != first);
    QVERIFY(rings[1].color().isNear(rgbaFloats(others == 0, others == 1, others == 2, double(0.4f))));
}

void RyOtherLookTest::conesKeepTheirSizeOnScaledNodes()
{
    RyDrawingStage stage;
    stage.pose();
    stage.figure->getScaleControl()->setValue(1.5f);
    stage.lShin->getYScaleControl()->setValue(0.6f);
    stage.select(stage.lShin);
    stage.viewport->getCamera()->lookAt(stage.lShin->getWSPos() + RyVec3(20, 10, 55), stage.lShin->getWSPos());
    const auto recording = stage.draw(RyDrawingStage::PickPass);
    int found = 0;
    for (const auto &fan : recording->ofMode(GL_TRIANGLE_FAN)) {
        for (int id = 41; id <= 46; ++id) {
            if (!(fan.color() == rgbBytes(id, 0, 128)))
                continue;
            ++found;
            const int axis = (id - 41) % 3;
            // Measured where the arrow ends in the world, in the handle's own frame.
            const RyVec3 base = RyVec3::axis(axis) * 5.0f;
            RyVec3 rim;
            for (size_t i = 1; i <= 10; ++i)
                rim += stage.world(fan, i);
            const RyVec3 place = rim / 10.0f;
            const double size = std::min(stage.worldSize(50, place), 6.0);
            QVERIFY(size < 5.9);
            const RyMatrix4 frame = id < 44 ? RyHandleFrame::ofOrigin(*stage.lShin).toWorld()
                                            : RyHandleFrame::ofEndPoint(*stage.lShin).toWorld();
            const RyVec3 apex = frame.inverse().multVecMatrix(stage.world(fan, 0));
            QVERIFY2(std::abs(double((apex - base).length()) - size / 4) < 5e-3, qPrintable(QString::number(id)));
        }
    }
    QCOMPARE(found, 6);
}

void RyOtherLookTest::baseToolsHighlightIsDrawn()
{
    RyDrawingStage stage;
    // A square before the camera that is a prop's mesh.
    auto *mesh = new RyFacetMesh;
    mesh->setPositions({{-40, 20, 60}, {40, 20, 60}, {40, 100, 60}, {-40, 100, 60}});
    RyFacet facet;
    const int corners[4] = {0, 1, 2, 3};
    std::copy(corners, corners + 4, facet.vertices);
    mesh->setFacets({facet});
    auto *object = new RyObject;
    object->addShape(new RyFacetShape(mesh));
    stage.prop->setObject(object);
    stage.tool->setBoneDrawMode(RyJointEditorTool::NoBones);
    const auto pixel = [&] {
        glClearColor(0, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        stage.draw();
        glDisable(GL_BLEND);
        unsigned char rgba[4] = {};
        const QPoint point = stage.pixelOf({-20, 80, 60});
        glReadPixels(point.x(), 599 - point.y(), 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba);
        return QColor(rgba[0], rgba[1], rgba[2]);
    };
    stage.select(stage.lFoot);
    QCOMPARE(pixel(), QColor(0, 0, 0));
    stage.viewport->nextNode = stage.prop;
    stage.hover(0, stage.pixelOf({-20, 80, 60}));
    QCOMPARE(stage.tool->getHighlightNode(), stage.prop);
    const QColor lit = pixel();
    const QColor accent = stage.viewport->renderOptions().accent;
    QVERIFY(std::abs(lit.red() - accent.red() * 0.13) < 2);
    QVERIFY(std::abs(lit.green() - accent.green() * 0.13) < 2);
    QVERIFY(std::abs(lit.blue() - accent.blue() * 0.13) < 2);
    // Also with nothing current, where the tool itself draws nothing.
    stage.select(nullptr);
    stage.hover(0, stage.pixelOf({-20, 80, 60}));
    QCOMPARE(pixel(), lit);
    stage.hover(45);
    QVERIFY(!stage.tool->getHighlightNode());
    QCOMPARE(pixel(), QColor(0, 0, 0));
}

RY_TEST(RyOtherLookTest)

#include "tst_otherLook.moc"
