#include "support/RyTest.h"

#include "rycore/scene/RyCamera.h"
#include "rycore/viewport/RyCameraController.h"
#include "rycore/viewport/RyViewMatrices.h"

#include <cmath>

class RyCameraControllerTest : public QObject
{
    Q_OBJECT
private slots:
    void orbitKeepsTargetDistanceAndHorizon()
    {
        RyCamera camera;
        RyCameraController controller(&camera);
        camera.lookAt(RyVec3(30, 120, 300), RyVec3(0, 90, 10));
        for (const QPointF &step :
             {QPointF(40, 10), QPointF(-200, 90), QPointF(700, -400), QPointF(0, 2000), QPointF(50, 0)}) {
            const float distance = camera.focalDistance();
            controller.orbit(step);
            QVERIFY((controller.target() - RyVec3(0, 90, 10)).length() < 0.05f);
            QVERIFY(std::abs(camera.focalDistance() - distance) < 1e-3f * distance);
            const RyVec3 right = camera.getWSRot().multVec(RyVec3(1, 0, 0));
            QVERIFY2(std::abs(right.y) < 1e-3f, "the horizon stays level");
            QVERIFY(camera.getWSRot().multVec(RyVec3(0, 1, 0)).y > -1e-3f);
        }
    }

    void comesBackFromThePole()
    {
        RyCamera camera;
        RyCameraController controller(&camera);
        camera.lookAt(RyVec3(0, 0, 100), RyVec3(0, 0, 0));
        controller.setDirection(30, 0);
        const RyVec3 before = camera.viewDirection();
        controller.orbit(QPointF(0, 100000));
        QVERIFY((camera.viewDirection() - RyVec3(0, -1, 0)).length() < 1e-3f);
        controller.orbit(QPointF(0, -90.0 / 0.35));
        QVERIFY((camera.viewDirection() - before).length() < 2e-3f);
    }

    void frameShowsTheWholeBox_data()
    {
        QTest::addColumn<QSizeF>("view");
        QTest::addColumn<bool>("orthographic");
        QTest::newRow("wide") << QSizeF(900, 300) << false;
        QTest::newRow("tall") << QSizeF(300, 900) << false;
        QTest::newRow("wide orthographic") << QSizeF(900, 300) << true;
        QTest::newRow("tall orthographic") << QSizeF(300, 900) << true;
    }
    void frameShowsTheWholeBox()
    {
        QFETCH(QSizeF, view);
        QFETCH(bool, orthographic);
        RyCamera camera;
        RyCameraController controller(&camera);
        camera.lookAt(RyVec3(0, 0, 100), RyVec3(0, 0, 0));
        controller.setDirection(35, 20);
        controller.setOrthographic(orthographic);
        const RyBox3 box(RyVec3(-80, 0, -15), RyVec3(80, 175, 20));
        controller.frame(box, view);
        const RyViewMatrices matrices(camera, view.width(), view.height());
        double nearest = 1e9;
        for (int corner = 0; corner < 8; ++corner) {
            const RyVec3 p(corner & 1 ? 80.0f : -80.0f, corner & 2 ? 175.0f : 0.0f, corner & 4 ? 20.0f : -15.0f);
            QPointF pixel;
            QVERIFY(matrices.project(p, pixel));
            for (double margin : {pixel.x(), view.width() - pixel.x(), pixel.y(), view.height() - pixel.y()})
                nearest = std::min(nearest, margin);
        }
        QVERIFY(nearest >= 0.0);
        QVERIFY2(nearest < 0.1 * std::max(view.width(), view.height()), "and fills the view");
    }

    void emptyBoxesAndWildZoomsAreHarmless()
    {
        RyCamera camera;
        RyCameraController controller(&camera);
        camera.lookAt(RyVec3(0, 0, 100), RyVec3(0, 0, 0));
        controller.frame(RyBox3(), QSizeF(100, 100));
        QCOMPARE(camera.focalDistance(), 100.0f);
        for (int i = 0; i < 400; ++i)
            controller.zoom(0.5, QPointF(3, 90), QSizeF(100, 100));
        QVERIFY(camera.focalDistance() > 0.1f && std::isfinite(camera.getWSPos().x));
        for (int i = 0; i < 400; ++i)
            controller.zoom(2.0, QPointF(3, 90), QSizeF(100, 100));
        QVERIFY(camera.focalDistance() < 1e6f && std::isfinite(camera.getWSPos().x));
        controller.frame(RyBox3(RyVec3(1, 1, 1), RyVec3(1, 1, 1)), QSizeF(0, 0));
        QVERIFY(std::isfinite(camera.getWSPos().z));
    }
};

RY_TEST(RyCameraControllerTest)
#include "tst_RyCameraController.moc"
