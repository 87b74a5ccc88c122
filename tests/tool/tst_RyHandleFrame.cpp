#include "support/RyNear.h"
#include "support/RyTest.h"

#include "RyToolScene.h"

#include "pluginsource/RyJointTools/tool/handles/RyHandleFrame.h"
#include "pluginsource/RyJointTools/tool/joint/RyGuardedPointer.h"
#include "rycore/base/RyFloatProperty.h"

/// Where handles stand, and what the tool holds without owning it.
class RyHandleFrameTest : public QObject
{
    Q_OBJECT

private slots:
    void originFrame();
    void endPointFrame();
    void lengthsOfScaledNodes();
    void shearTurnsNoAxis();
    void toWorld();
    void wayAlongAxis();
    void wayInPlane();
    void guardedPointer();
};

void RyHandleFrameTest::originFrame()
{
    RyToolScene scene;
    scene.pose();
    const RyHandleFrame frame = RyHandleFrame::ofOrigin(*scene.lShin);
    QVERIFY(ryIsNear(frame.anchor, scene.lShin->getWSPos()));
    for (int k = 0; k < 3; ++k) {
        // The parent is not scaled: its transform turns the axes and no more.
        QVERIFY(ryIsNear(frame.axes[k], scene.lThigh->getWSTransform().multDirMatrix(RyVec3::axis(k)), 1e-5f));
        QVERIFY(std::abs(frame.lengths[k] - 1.0f) < 1e-5f);
    }
    // The own pose of the shin turns them away from those of its end point.
    QVERIFY(!ryIsNear(frame.axes[1], RyHandleFrame::ofEndPoint(*scene.lShin).axes[1], 0.1f));
    const RyHandleFrame ofRoot = RyHandleFrame::ofOrigin(*scene.figure);
    for (int k = 0; k < 3; ++k)
        QCOMPARE(ofRoot.axes[k], RyVec3::axis(k));
}

void RyHandleFrameTest::endPointFrame()
{
    RyToolScene scene;
    scene.pose();
    const RyHandleFrame frame = RyHandleFrame::ofEndPoint(*scene.lShin);
    const RyMatrix4 transform = scene.lShin->getWSTransform();
    QVERIFY(ryIsNear(frame.anchor, transform.multVecMatrix(scene.lShin->getEndPoint() - scene.lShin->getOrigin())));
    for (int k = 0; k < 3; ++k)
        QVERIFY(ryIsNear(frame.axes[k], transform.multDirMatrix(RyVec3::axis(k)), 1e-5f));
}

void RyHandleFrameTest::lengthsOfScaledNodes()
{
    RyToolScene scene;
    scene.figure->getYRotControl()->setValue(30.0f);
    scene.figure->getScaleControl()->setValue(1.5f);
    scene.hip->getXScaleControl()->setValue(0.7f);
    for (const RyHandleFrame &frame : {RyHandleFrame::ofOrigin(*scene.hip), RyHandleFrame::ofEndPoint(*scene.hip)}) {
        QVERIFY(std::abs(frame.lengths[0] - 1.05f) < 1e-4f);
        QVERIFY(std::abs(frame.lengths[1] - 1.5f) < 1e-4f);
        QVERIFY(std::abs(frame.lengths[2] - 1.5f) < 1e-4f);
    }
    QVERIFY(ryIsNear(RyHandleFrame::ofEndPoint(*scene.hip).anchor, scene.hip->getWSEndPoint()));
}

void RyHandleFrameTest::shearTurnsNoAxis()
{
    RyToolScene scene;
    scene.pose();
    scene.lThigh->getXScaleControl()->setValue(0.4f);
    const RyHandleFrame frame = RyHandleFrame::ofEndPoint(*scene.lShin);
    // The node's transform takes the unit axes to directions that are not at right angles.
    const RyMatrix4 transform = scene.lShin->getWSTransform();
    QVERIFY(std::abs(transform.multDirMatrix({1, 0, 0}).normalized().dot(
                transform.multDirMatrix({0, 1, 0}).normalized())) > 0.1f);
    for (int k = 0; k < 3; ++k) {
        QVERIFY(std::abs(frame.axes[k].length() - 1.0f) < 1e-5f);
        QVERIFY(std::abs(frame.axes[k].dot(frame.axes[(k + 1) % 3])) < 1e-5f);
        QVERIFY(ryIsNear(frame.axes[k], scene.lShin->getWSRot().multVec(RyVec3::axis(k)), 1e-5f));
    }
}

void RyHandleFrameTest::toWorld()
{
    RyHandleFrame frame;
    frame.anchor = {4, 5, 6};
    frame.axes[0] = {0, 1, 0};
    frame.axes[1] = {0, 0, 1};
    frame.axes[2] = {1, 0, 0};
    frame.lengths[0] = 2.0f;
    frame.lengths[2] = -3.0f;
    QCOMPARE(frame.toWorld().multVecMatrix(RyVec3()), RyVec3(4, 5, 6));
    QCOMPARE(frame.toWorld().multVecMatrix({5, 1, 1}), RyVec3(1, 15, 7));
}

void RyHandleFrameTest::wayAlongAxis()
{
    RyHandleFrame frame;
    frame.anchor = {4, 5, 6};
    frame.axes[1] = {0, 0, 1};
    frame.lengths[1] = 7.0f; // what is drawn is longer, a way is not
    QCOMPARE(frame.wayAlongAxis(1, RyLine3(RyVec3(9, 5, 9), RyVec3(8, 5, 9))), RyVec3(0, 0, 3));
    QCOMPARE(frame.wayAlongAxis(1, RyLine3(RyVec3(4, 90, 1), RyVec3(4, 80, 1))), RyVec3(0, 0, -5));
    QCOMPARE(frame.wayAlongAxis(1, RyLine3(RyVec3(9, 5, 0), RyVec3(9, 5, 1))), RyVec3()); // parallel
}

void RyHandleFrameTest::wayInPlane()
{
    RyToolScene scene;
    scene.pose();
    const RyQuat view = scene.viewport->getCamera()->getWSRot();
    const RyHandleFrame frame = RyHandleFrame::ofEndPoint(*scene.lShin, view);
    QVERIFY(ryIsNear(frame.planeNormal, -scene.viewport->getCamera()->viewDirection(), 1e-4f));
    const RyVec3 eye = scene.viewport->getCamera()->getWSPos();
    const RyVec3 way = frame.wayInPlane(RyLine3(eye, RyVec3(20, 30, 10)));
    QVERIFY(way.length() > 1.0f);
    QVERIFY(std::abs(way.dot(frame.planeNormal)) < 1e-2f);
    QVERIFY((frame.anchor + way - eye).normalized().dot((RyVec3(20, 30, 10) - eye).normalized()) > 0.99999f);
    QVERIFY(ryIsNear(frame.wayInPlane(RyLine3(eye, frame.anchor)), RyVec3(), 1e-2f));
}

void RyHandleFrameTest::guardedPointer()
{
    class Declared;
    auto object = std::make_unique<QObject>();
    const RyGuardedPointer<Declared> pointer(reinterpret_cast<Declared *>(object.get()), object.get());
    const RyGuardedPointer<Declared> copy = pointer;
    QCOMPARE(static_cast<void *>(pointer.get()), static_cast<void *>(object.get()));
    object.reset();
    QVERIFY(!pointer.get());
    QVERIFY(!copy.get());
    QVERIFY(!RyGuardedPointer<Declared>().get());
}

RY_TEST(RyHandleFrameTest)

#include "tst_RyHandleFrame.moc"
