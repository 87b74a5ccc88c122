#include "rycore/viewport/RyGL.h"

#include "support/RyTest.h"

#include "rycore/scene/RyScene.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyGLUtility.h"
#include "rycore/viewport/RyViewportMgr.h"
#include "rycore/viewport/drawing/RyFramebuffer.h"

#include <cmath>
#include <vector>

/// Balls of a few pixels are made of no more facets than show.
class SmallBallsTest : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_manager = std::make_unique<RyViewportMgr>(&m_scene);
        m_viewport = std::make_unique<Ry3DViewport>(m_manager.get());
        m_viewport->makeCurrent();
        m_target = std::make_unique<RyFramebuffer>(size, size, 0);
        m_target->bind();
        glViewport(0, 0, size, size);
        for (GLenum capability : {GL_DEPTH_TEST, GL_BLEND, GL_LIGHTING, GL_CULL_FACE})
            glDisable(capability);
        setPixels();
    }
    void cleanup()
    {
        m_target.reset();
        m_viewport.reset();
        m_manager.reset();
    }

    void facetsFollowTheSizeOnScreen()
    {
        const int fine = facets(60, 90.0f, true);
        QVERIFY2(fine > 3400, qPrintable(QString::number(fine)));
        QVERIFY(facets(360, 90.0f, true) < 20 * fine);
        const int small = facets(60, 3.3f, true);
        QVERIFY2(small > 150 && small < 700, qPrintable(QString::number(small)));
        QCOMPARE(facets(360, 3.3f, true), small);
        // Fewer than show are drawn as they are wanted, and lines always.
        QVERIFY(facets(8, 3.3f, true) < small / 4);
        QVERIFY(facets(8, 3.3f, true) >= 8 * 2);
        QCOMPARE(facets(60, 3.3f, false), facets(60, 90.0f, false));
    }

    void theMatricesCount()
    {
        const int small = facets(60, 3.3f, true);
        glScalef(30, 30, 30);
        QVERIFY(std::abs(facets(60, 0.11f, true) - small) <= small / 5);
        QVERIFY(facets(60, 3.0f, true) > 3400);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glFrustum(-1, 1, -1, 1, 1, 1000);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glTranslatef(0, 0, -50); // a length of 1 has two pixels there
        const int away = facets(60, 1.0f, true);
        QVERIFY2(away > 100 && away < small, qPrintable(QString::number(away)));
        glTranslatef(0, 0, 47); // and 50 where the ball is nearest
        QVERIFY(facets(60, 1.0f, true) > 10 * away);
    }

    void theyLookLikeRoundOnes()
    {
        int different = 0;
        for (int i = 0; i < 24; ++i) {
            const QPointF place(0.5 + 0.13 * i, -9.8 + 0.29 * i);
            const float radius = 1.5f + 0.25f * float(i % 13);
            const QImage ours = picture(place, [radius] {
                glRotatef(37, 1, 2, 3);
                RyGLUtility::drawSphere(60, radius, false, true);
            });
            const QImage round = picture(place, [radius] { drawDisc(radius); });
            QVERIFY(ours != picture(place, [] {}));
            different += pixelsThatDiffer(ours, round);
        }
        // Of some 1,000 pixels, hardly one a ball.
        QVERIFY2(different <= 24, qPrintable(QString::number(different)));
    }

private:
    static constexpr int size = 200;

    /// A length of 1 is a pixel.
    static void setPixels()
    {
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(0, size, 0, size, -size, size);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glTranslatef(size / 2, size / 2, 0);
    }
    static void drawDisc(float radius)
    {
        glBegin(GL_POLYGON);
        for (int i = 0; i < 720; ++i)
            glVertex3f(radius * float(std::cos(i * M_PI / 360)), radius * float(std::sin(i * M_PI / 360)), 0);
        glEnd();
    }
    template<typename Draw>
    QImage picture(const QPointF &place, const Draw &draw) const
    {
        setPixels();
        glClearColor(0, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        glColor3f(1, 1, 1);
        glTranslated(place.x(), place.y(), 0);
        draw();
        return m_target->toImage();
    }
    /// Triangles, or lines, that a sphere around the origin is made of, as GL hands them back.
    static int facets(int density, float radius, bool solid)
    {
        std::vector<float> buffer(4 << 20);
        glFeedbackBuffer(int(buffer.size()), GL_2D, buffer.data());
        glRenderMode(GL_FEEDBACK);
        RyGLUtility::drawSphere(density, radius, false, solid);
        const int count = glRenderMode(GL_RENDER);
        int found = 0;
        for (int i = 0; i < count; ++found) {
            const int token = int(buffer[size_t(i)]);
            i += token == GL_POLYGON_TOKEN ? 2 + 2 * int(buffer[size_t(i) + 1]) : 5;
        }
        return found;
    }
    static int pixelsThatDiffer(const QImage &a, const QImage &b)
    {
        int different = 0;
        for (int y = 0; y < a.height(); ++y) {
            for (int x = 0; x < a.width(); ++x)
                different += a.pixel(x, y) != b.pixel(x, y);
        }
        return different;
    }

    RyScene m_scene;
    std::unique_ptr<RyViewportMgr> m_manager;
    std::unique_ptr<Ry3DViewport> m_viewport;
    std::unique_ptr<RyFramebuffer> m_target;
};

RY_TEST(SmallBallsTest)
#include "tst_smallBalls.moc"
