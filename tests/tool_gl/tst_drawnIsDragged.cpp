#include "support/RyTest.h"

#include "RyDrawingStage.h"

#include "pluginsource/RyJointTools/tool/drags/RyDragContext.h"
#include "pluginsource/RyJointTools/tool/drags/RyHandleDrag.h"
#include "pluginsource/RyJointTools/tool/drags/makeDrag.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleFrame.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleTable.h"
#include "rycore/base/RyFloatProperty.h"

#include <cmath>

namespace {

constexpr int drawnIds[] = {1, 2, 41, 42, 43, 44, 45, 46};
constexpr float reach = 2e-2f; // centimetres, at some 300 from the camera in single precision

/// A line of the world as it was drawn.
struct Drawn
{
    RyVec3 start;
    RyVec3 direction; // unit
    RyVec3 at(float way) const { return start + direction * way; }
    float distanceOf(const RyVec3 &place) const
    {
        const RyVec3 between = place - start;
        return (between - direction * between.dot(direction)).length();
    }
};

bool ofOrigin(const RyHandle &handle)
{
    return handle.target == RyHandle::Origin;
}

RyHandleFrame frameOf(const RyHandle &handle, const RyNode &node)
{
    return ofOrigin(handle) ? RyHandleFrame::ofOrigin(node) : RyHandleFrame::ofEndPoint(node);
}

RyVec3 placeOf(const RyHandle &handle, const RyNode &node)
{
    return ofOrigin(handle) ? node.getWSPos() : node.getWSEndPoint();
}

/// The handle's lines in the pick pass: one from the anchor for an arrow, three from their middle for a point.
std::vector<Drawn> drawnLines(RyDrawingStage &stage, const RyHandle &handle)
{
    std::vector<Drawn> lines;
    for (const auto &primitive : stage.draw(RyDrawingStage::PickPass)->ofColor(rgbBytes(handle.id, 0, 128))) {
        for (size_t i = 0; primitive.mode == GL_LINES && i + 1 < primitive.vertices.size(); i += 2) {
            const RyVec3 from = stage.world(primitive, i);
            const RyVec3 to = stage.world(primitive, i + 1);
            const RyVec3 start = handle.kind == RyHandle::Point ? (from + to) * 0.5f : from;
            lines.push_back({start, (to - from).normalized()});
        }
    }
    return lines;
}

/// Origins follow the mouse where the node's own pose leaves the space alone in which they move.
bool followsTheMouse(const RyHandle &handle, const RyNode &node)
{
    const RyMatrix3 scale = node.getLocalScale();
    return !ofOrigin(handle) || (node.getLocalRot() == RyQuat() && scale == RyMatrix3());
}

void turnBones(RyDrawingStage &stage)
{
    stage.lThigh->setOrientation(RyQuat({0, 0, 1}, 0.6f));
    stage.lShin->setOrientation(RyQuat({1, 2, 0.5f}, -1.1f));
    stage.hip->setOrientation(RyQuat({0, 1, 0}, 2.0f));
}

void scaleBones(RyDrawingStage &stage)
{
    stage.figure->getScaleControl()->setValue(1.25f);
    stage.lThigh->getXScaleControl()->setValue(0.5f);
    stage.lShin->getYScaleControl()->setValue(1.4f);
    stage.lFoot->getZScaleControl()->setValue(0.8f);
}

} // namespace

/// What is drawn is what is dragged: each handle is drawn from the anchor of its frame along the frame's axes, and its
/// drag moves along the drawn line from where that begins.
class RyDrawnIsDraggedTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void drawn_data();
    void drawn();
    void dragged_data();
    void dragged();
};

void RyDrawnIsDraggedTest::initTestCase()
{
    if (!RyDrawingStage::hasGL())
        QSKIP("no OpenGL here");
}

void RyDrawnIsDraggedTest::drawn_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<bool>("posed");
    QTest::addColumn<bool>("turned");
    QTest::addColumn<bool>("scaled");
    for (int id : drawnIds) {
        QTest::addRow("%d, at rest", id) << id << false << false << false;
        QTest::addRow("%d, posed", id) << id << true << false << false;
        QTest::addRow("%d, turned", id) << id << true << true << false;
        QTest::addRow("%d, scaled", id) << id << false << false << true;
        QTest::addRow("%d, scaled, turned and posed", id) << id << true << true << true;
    }
}

void RyDrawnIsDraggedTest::dragged_data()
{
    drawn_data();
}

static void prepare(RyDrawingStage &stage)
{
    QFETCH(bool, posed);
    QFETCH(bool, turned);
    QFETCH(bool, scaled);
    if (posed)
        stage.pose();
    if (turned)
        turnBones(stage);
    if (scaled)
        scaleBones(stage);
}

void RyDrawnIsDraggedTest::drawn()
{
    QFETCH(int, id);
    const RyHandle &handle = *RyHandleTable::find(id);
    RyDrawingStage stage;
    prepare(stage);
    for (RyNode *node : std::initializer_list<RyNode *>{stage.figure, stage.hip, stage.lThigh, stage.lShin, stage.lFoot,
                                                        stage.rThigh}) {
        stage.select(node);
        const RyHandleFrame frame = frameOf(handle, *node);
        const std::vector<Drawn> lines = drawnLines(stage, handle);
        QCOMPARE(lines.size(), size_t(handle.kind == RyHandle::Point ? 3 : 1));
        for (size_t i = 0; i < lines.size(); ++i) {
            const int axis = handle.kind == RyHandle::Point ? int(i) : handle.axis;
            QVERIFY2((lines[i].start - frame.anchor).length() < reach, qPrintable(node->getName()));
            QVERIFY2((lines[i].direction - frame.axes[axis]).length() < 1e-3f, qPrintable(node->getName()));
            // Not the frame's word alone: the place of the point, and the axes of its space.
            const RyNode *space = ofOrigin(handle) ? node->getNodeParent() : node;
            const RyVec3 expected = (space ? space->getWSRot() : RyQuat()).multVec(RyVec3::axis(axis));
            QVERIFY2((lines[i].start - placeOf(handle, *node)).length() < reach, qPrintable(node->getName()));
            QVERIFY2((lines[i].direction - expected).length() < 1e-3f, qPrintable(node->getName()));
        }
    }
}

void RyDrawnIsDraggedTest::dragged()
{
    QFETCH(int, id);
    const RyHandle &handle = *RyHandleTable::find(id);
    RyDrawingStage stage;
    prepare(stage);
    int followed = 0;
    for (RyBone *bone : {stage.hip, stage.lThigh, stage.lShin, stage.lFoot, stage.rThigh}) {
        stage.select(bone);
        const Drawn line = drawnLines(stage, handle).front();
        const RyCamera *camera = stage.viewport->getCamera();
        const RyVec3 eye = camera->getWSPos();
        RyDragContext context{bone};
        context.camera = camera;
        const auto drag = makeDrag(&handle, context);
        if (handle.kind == RyHandle::AxisArrow) {
            // The ray that hits the drawn line somewhere means the way from its start to there.
            for (float way : {-7.0f, 0.0f, 12.5f}) {
                const RyVec3 vector = drag->dragVector(RyLine3(eye, line.at(way)));
                QVERIFY2((vector - line.direction * way).length() < reach, qPrintable(bone->getName()));
            }
        } else {
            QVERIFY(drag->dragVector(RyLine3(eye, line.start)).length() < reach);
            const RyVec3 vector = drag->dragVector(RyLine3(eye, line.start + RyVec3(9, 4, -5)));
            QVERIFY(vector.length() > 1.0f);
            QVERIFY(std::abs(vector.dot(camera->viewDirection())) < reach);
        }
        if (!followsTheMouse(handle, *bone))
            continue;
        ++followed;
        const QPoint from = stage.pixelOf(line.start);
        stage.press(id, from);
        stage.move(from + QPoint(31, 27));
        const RyVec3 moved = placeOf(handle, *bone);
        QVERIFY2((moved - line.start).length() > 0.3f, qPrintable(bone->getName()));
        if (handle.kind == RyHandle::AxisArrow)
            QVERIFY2(line.distanceOf(moved) < reach, qPrintable(bone->getName()));
        else
            QVERIFY(std::abs((moved - line.start).dot(camera->viewDirection())) < reach);
        stage.tool->cancelDrag();
    }
    QVERIFY(followed > 0);
}

RY_TEST(RyDrawnIsDraggedTest)

#include "tst_drawnIsDragged.moc"
