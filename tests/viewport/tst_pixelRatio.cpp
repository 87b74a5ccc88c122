#include "support/RyTest.h"

#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyScene.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyDrawStyle.h"
#include "rycore/viewport/RyGL.h"
#include "rycore/viewport/RyGLUtility.h"
#include "rycore/viewport/RyPickTool.h"
#include "rycore/viewport/RyViewportMgr.h"

#include <algorithm>

namespace {

/// A viewport on a display of any density.
class DenseViewport : public Ry3DViewport
{
public:
    using Ry3DViewport::Ry3DViewport;
    qreal ratio = 1.0;

protected:
    int metric(PaintDeviceMetric which) const override
    {
        if (which == PdmDevicePixelRatio)
            return int(ratio);
        if (which == PdmDevicePixelRatioScaled)
            return int(ratio * devicePixelRatioFScale());
        return Ry3DViewport::metric(which);
    }
};

/// Draws a line across the view, as wide as a tool lets the pick pass have it, and a square that covers 50 pixels.
class LineTool : public RyPickTool
{
public:
    LineTool() : RyPickTool(QStringLiteral("Line")) {}
    void draw(Ry3DViewport *, const RyDrawStyle &style) override
    {
        if (style.shadeStyle != RyDrawStyle::PickPass)
            return;
        float width = 0;
        glGetFloatv(GL_LINE_WIDTH, &width);
        glLineWidth(std::min(width, 10.0f));
        glColor3ub(7, 0, 128);
        glBegin(GL_LINES);
        glVertex3f(-30, 10, 0);
        glVertex3f(30, 10, 0);
        glEnd();
        const float half = RyGLUtility::displayToPerspectiveSize(50, {0, -10, 0}) / 2;
        glColor3ub(8, 0, 128);
        glBegin(GL_QUADS);
        glVertex3f(-half, -10 - half, 0);
        glVertex3f(half, -10 - half, 0);
        glVertex3f(half, -10 + half, 0);
        glVertex3f(-half, -10 + half, 0);
        glEnd();
    }
};

} // namespace

/// What is caught under the mouse on displays of several densities.
class RyPixelRatioTest : public QObject
{
    Q_OBJECT

private slots:
    void catchesAsFarOnEveryDisplay_data()
    {
        QTest::addColumn<double>("ratio");
        QTest::newRow("100 %") << 1.0;
        QTest::newRow("150 %") << 1.5;
        QTest::newRow("200 %") << 2.0;
        QTest::newRow("300 %") << 3.0;
    }

    void catchesAsFarOnEveryDisplay()
    {
        QFETCH(double, ratio);
        RyScene scene;
        RyViewportMgr manager(&scene);
        DenseViewport viewport(&manager);
        viewport.ratio = ratio;
        QCOMPARE(viewport.devicePixelRatioF(), ratio);
        auto *tool = new LineTool;
        manager.addTool(tool);
        manager.setActiveTool(tool);
        viewport.resize(400, 300);
        viewport.getCamera()->lookAt({0, 0, 150}, {0, 0, 0});

        const auto pixelsOf = [&](int id, const QPoint &from, const QPoint &step, int count) {
            int found = 0;
            for (int i = 0; i < count; ++i)
                found += viewport.pickOnGizmo(from + step * i) == id;
            return found;
        };
        QPointF line;
        QVERIFY(viewport.project({0, 10, 0}, line));
        QCOMPARE(pixelsOf(7, QPoint(200, int(line.y()) - 25), QPoint(0, 1), 50), 10);
        // Evenly about the line.
        QVERIFY(viewport.pickOnGizmo(QPoint(200, int(line.y()) + 3)) == 7);
        QVERIFY(viewport.pickOnGizmo(QPoint(200, int(line.y()) - 3)) == 7);
        QPointF square;
        QVERIFY(viewport.project({0, -10, 0}, square));
        QCOMPARE(pixelsOf(8, QPoint(130, int(square.y())), QPoint(1, 0), 140), 50);
        // Rays that follow know the display again.
        const QPoint point(321, 77);
        const RyLine3 ray = RyGLUtility::pixelToRay(point);
        const RyLine3 expected = viewport.matrices().ray(point);
        QVERIFY((ray.getDirection() - expected.getDirection()).length() < 1e-4f);
    }

    void edgesOfTheView()
    {
        RyScene scene;
        RyViewportMgr manager(&scene);
        DenseViewport viewport(&manager);
        viewport.ratio = 2.0;
        auto *tool = new LineTool;
        manager.addTool(tool);
        manager.setActiveTool(tool);
        viewport.resize(40, 300);
        viewport.getCamera()->lookAt({0, 0, 150}, {0, 0, 0});
        QPointF line;
        QVERIFY(viewport.project({0, 10, 0}, line));
        const int y = int(line.y());
        QCOMPARE(viewport.pickOnGizmo(QPoint(0, y)), 7);
        QCOMPARE(viewport.pickOnGizmo(QPoint(39, y)), 7);
        QCOMPARE(viewport.pickOnGizmo(QPoint(40, y)), 0);
        QCOMPARE(viewport.pickOnGizmo(QPoint(-1, y)), 0);
    }
};

RY_TEST(RyPixelRatioTest)
#include "tst_pixelRatio.moc"
