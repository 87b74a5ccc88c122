#include "rycore/viewport/RyGL.h"

#include "support/RyTest.h"

#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyScene.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyGLUtility.h"
#include "rycore/viewport/RyOffscreenContext.h"
#include "rycore/viewport/RyViewportMgr.h"

#include <cmath>

class RyGLUtilityTest : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_manager = std::make_unique<RyViewportMgr>(&m_scene);
        m_viewport = std::make_unique<Ry3DViewport>(m_manager.get());
        m_viewport->resize(400, 300);
        m_viewport->makeCurrent();
    }
    void cleanup()
    {
        m_viewport.reset();
        m_manager.reset();
    }

    void raysGoThroughTheirPixels()
    {
        for (const RyVec3 &point : {RyVec3(0, 90, 0), RyVec3(40, 10, 30), RyVec3(-60, 150, -20)}) {
            QPointF pixel;
            QVERIFY(m_viewport->project(point, pixel));
            const RyLine3 ray = RyGLUtility::pixelToRay(pixel.toPoint());
            const RyVec3 offset = point - ray.getOrigin();
            const float miss = (offset - ray.getDirection() * offset.dot(ray.getDirection())).length();
            QVERIFY(miss <= m_viewport->matrices().pixelSize(point));
            QVERIFY(std::abs(ray.getDirection().length() - 1.0f) < 1e-5f);
        }
    }

    void raysFollowTheModelviewMatrix()
    {
        const RyLine3 world = RyGLUtility::pixelToRay(QPoint(120, 200));
        glPushMatrix();
        glTranslatef(10, 0, 0);
        const RyLine3 local = RyGLUtility::pixelToRay(QPoint(120, 200));
        glPopMatrix();
        QVERIFY((world.getOrigin() - local.getOrigin() - RyVec3(10, 0, 0)).length() < 1e-3f);
        QVERIFY((world.getDirection() - local.getDirection()).length() < 1e-4f);
    }

    void lengthsOnScreen()
    {
        const RyVec3 place = m_viewport->cameraController().target();
        const float length = RyGLUtility::displayToPerspectiveSize(50, place);
        const RyVec3 right = m_viewport->getCamera()->getWSRot().multVec(RyVec3(1, 0, 0));
        QPointF a, b;
        m_viewport->project(place, a);
        m_viewport->project(place + right * length, b);
        QVERIFY(std::abs(std::hypot(b.x() - a.x(), b.y() - a.y()) - 50) < 0.1);
        QVERIFY(std::isfinite(RyGLUtility::displayToPerspectiveSize(50, m_viewport->getCamera()->getWSPos())));
    }

    void theDevicePixelRatioCountsOnce()
    {
        const RyVec3 place(0, 90, 0);
        const float length = RyGLUtility::displayToPerspectiveSize(50, place);
        glViewport(0, 0, 800, 600);
        RyGLUtility::setDevicePixelRatio(2);
        QVERIFY(std::abs(RyGLUtility::displayToPerspectiveSize(50, place) / length - 1.0f) < 1e-5f);
        const RyLine3 doubled = RyGLUtility::pixelToRay(QPoint(120, 200));
        m_viewport->makeCurrent();
        const RyLine3 single = RyGLUtility::pixelToRay(QPoint(120, 200));
        QVERIFY((doubled.getDirection() - single.getDirection()).length() < 1e-6f);
    }

    void shapesOfAnyDensityAreFinite()
    {
        glGetError();
        for (int density : {-1, 0, 1, 2, 60}) {
            RyGLUtility::drawSphere(density, 1.0f, false, true);
            RyGLUtility::drawSphere(density, 1.0f, true, false);
            for (int axis = 0; axis < 3; ++axis)
                RyGLUtility::drawCircle(density, 2.0f, axis, density == 2, 0.5f);
        }
        QCOMPARE(glGetError(), GLenum(GL_NO_ERROR));
    }

    void circlesLieAcrossTheirAxis()
    {
        // Seen by feedback: every vertex of the ring keeps its offset on the axis and its distance from it.
        for (int axis = 0; axis < 3; ++axis) {
            std::vector<float> buffer(4096);
            glMatrixMode(GL_PROJECTION);
            glPushMatrix();
            glLoadIdentity();
            glOrtho(-10, 10, -10, 10, -10, 10);
            glMatrixMode(GL_MODELVIEW);
            glPushMatrix();
            glLoadIdentity();
            // Turn so that the axis points along x of the picture.
            if (axis == 1)
                glRotatef(-90, 0, 0, 1);
            if (axis == 2)
                glRotatef(90, 0, 1, 0);
            glViewport(0, 0, 200, 200);
            glFeedbackBuffer(int(buffer.size()), GL_2D, buffer.data());
            glRenderMode(GL_FEEDBACK);
            RyGLUtility::drawCircle(12, 4.0f, axis, false, 3.0f);
            const int count = glRenderMode(GL_RENDER);
            glPopMatrix();
            glMatrixMode(GL_PROJECTION);
            glPopMatrix();
            glMatrixMode(GL_MODELVIEW);
            QVERIFY(count > 12);
            int vertices = 0;
            for (int i = 0; i < count;) {
                const int token = int(buffer[size_t(i++)]);
                QVERIFY(token == GL_LINE_TOKEN || token == GL_LINE_RESET_TOKEN);
                for (int end = 0; end < 2; ++end, i += 2, ++vertices)
                    QVERIFY(std::abs(buffer[size_t(i)] - 130.0f) < 0.1f);
            }
            QCOMPARE(vertices, 24);
        }
    }

private:
    RyScene m_scene;
    std::unique_ptr<RyViewportMgr> m_manager;
    std::unique_ptr<Ry3DViewport> m_viewport;
};

RY_TEST(RyGLUtilityTest)
#include "tst_RyGLUtility.moc"
