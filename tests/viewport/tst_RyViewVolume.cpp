#include "rycore/viewport/RyGL.h"

#include "support/RyTest.h"

#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyScene.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyViewVolume.h"
#include "rycore/viewport/RyViewportMgr.h"

#include <random>

/// What of the world a context can show, beside the projections of points.
class RyViewVolumeTest : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_manager = std::make_unique<RyViewportMgr>(&m_scene);
        m_viewport = std::make_unique<Ry3DViewport>(m_manager.get());
        m_viewport->resize(400, 300);
        m_viewport->getCamera()->lookAt({30, 120, 240}, {10, 80, 0});
        m_viewport->getCamera()->setOrthographic(false);
        m_viewport->makeCurrent();
        glDisable(GL_SCISSOR_TEST);
        glLineWidth(1.0f);
    }
    void cleanup()
    {
        glDisable(GL_SCISSOR_TEST);
        glLineWidth(1.0f);
        m_viewport.reset();
        m_manager.reset();
    }

    void whatShowsIsReached_data()
    {
        QTest::addColumn<bool>("isOrthographic");
        QTest::addColumn<QRect>("scissor"); // y up; empty for none
        QTest::newRow("perspective") << false << QRect();
        QTest::newRow("orthographic") << true << QRect();
        QTest::newRow("a part of it") << false << QRect(120, 40, 64, 50);
        QTest::newRow("a part of the orthographic one") << true << QRect(300, 200, 300, 300);
    }

    void whatShowsIsReached()
    {
        QFETCH(bool, isOrthographic);
        QFETCH(QRect, scissor);
        m_viewport->getCamera()->setOrthographic(isOrthographic);
        m_viewport->makeCurrent();
        QRectF shown(0, 0, 400, 300);
        if (!scissor.isEmpty()) {
            glEnable(GL_SCISSOR_TEST);
            glScissor(scissor.x(), scissor.y(), scissor.width(), scissor.height());
            shown &= QRectF(scissor.x(), 300 - scissor.y() - scissor.height(), scissor.width(), scissor.height());
        }
        const RyViewVolume volume = RyViewVolume::ofContext();
        std::mt19937 random(ryTestSeed());
        std::uniform_real_distribution<float> part(-1.0f, 1.0f);
        int inside = 0;
        int leftOut = 0;
        for (int i = 0; i < 4000; ++i) {
            const RyVec3 center(10 + 150 * part(random), 80 + 120 * part(random), 300 * part(random));
            RyVec3 half[3];
            for (RyVec3 &axis : half)
                axis = RyVec3(part(random), part(random), part(random)) * 8.0f;
            const bool isReached = volume.reaches(center, half);
            bool isShown = false;
            for (int k = 0; k < 60 && !isShown; ++k) {
                QPointF pixel;
                const RyVec3 point = center + half[0] * part(random) + half[1] * part(random) + half[2] * part(random);
                isShown = m_viewport->project(point, pixel) && shown.contains(pixel);
            }
            QVERIFY(isReached || !isShown);
            inside += isShown;
            leftOut += !isReached;
        }
        QVERIFY(inside > 40);
        QVERIFY(leftOut > 300);
    }

    /// Exact to half the width of a line and the pixel that is spared for rounding.
    void sides_data()
    {
        QTest::addColumn<QPointF>("outwards");
        QTest::addColumn<QPointF>("corner");
        QTest::newRow("left") << QPointF(-1, 0) << QPointF(0, 150);
        QTest::newRow("right") << QPointF(1, 0) << QPointF(400, 150);
        QTest::newRow("top") << QPointF(0, -1) << QPointF(200, 0);
        QTest::newRow("bottom") << QPointF(0, 1) << QPointF(200, 300);
    }

    void sides()
    {
        QFETCH(QPointF, outwards);
        QFETCH(QPointF, corner);
        for (const float width : {1.0f, 9.0f}) {
            glLineWidth(width);
            const RyViewVolume volume = RyViewVolume::ofContext();
            const auto isReached = [&](double distance) {
                const RyLine3 ray = m_viewport->matrices().ray(corner + outwards * distance);
                const RyVec3 place = ray.getOrigin() + ray.getDirection() * 200.0f;
                return volume.reachesLine(place, place);
            };
            const double margin = double(width) / 2 + 1;
            QVERIFY(isReached(margin - 0.1));
            QVERIFY(!isReached(margin + 0.1));
        }
    }

    void nothingIsReachedBehindTheEyeNorThroughAnEmptyBox()
    {
        const RyVec3 eye = m_viewport->getCamera()->getWSPos();
        const RyVec3 ahead = m_viewport->getCamera()->viewDirection();
        QVERIFY(RyViewVolume::ofContext().reachesLine(eye + ahead * 100.0f, eye + ahead * 110.0f));
        QVERIFY(!RyViewVolume::ofContext().reachesLine(eye - ahead * 100.0f, eye - ahead * 110.0f));
        QVERIFY(!RyViewVolume::ofContext().reachesLine(eye + ahead * 0.5f, eye + ahead * 1.0f)); // nearer than is drawn
        QVERIFY(RyViewVolume::ofContext().reachesLine(eye - ahead * 100.0f, eye + ahead * 100.0f));
        glEnable(GL_SCISSOR_TEST);
        glScissor(0, 0, 0, 0);
        QVERIFY(!RyViewVolume::ofContext().reachesLine(eye + ahead * 100.0f, eye + ahead * 110.0f));
        glScissor(500, 0, 100, 100); // beside the viewport
        QVERIFY(!RyViewVolume::ofContext().reachesLine(eye + ahead * 100.0f, eye + ahead * 110.0f));
        glDisable(GL_SCISSOR_TEST);
        QVERIFY(RyViewVolume::ofContext().reachesLine(eye + ahead * 100.0f, eye + ahead * 110.0f));
    }

private:
    RyScene m_scene;
    std::unique_ptr<RyViewportMgr> m_manager;
    std::unique_ptr<Ry3DViewport> m_viewport;
};

RY_TEST(RyViewVolumeTest)
#include "tst_RyViewVolume.moc"
