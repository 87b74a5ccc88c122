#include "support/RyTest.h"
#include "viewport/ViewportStage.h"
#include "viewport/ViewportTestScene.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyModifier.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyShapePoints.h"
#include "rycore/viewport/drawing/RyFramebuffer.h"
#include "rycore/viewport/drawing/RyViewPainter.h"

#include <QMouseEvent>

namespace {

/// Makes the normals of a shape long and short, and leaves their directions.
class StretchedNormals : public RyModifier
{
public:
    explicit StretchedNormals(std::vector<float> lengths) : m_lengths(std::move(lengths)) { m_changes.markAll(1); }
    bool deform(RyShapePoints &points) override
    {
        if (!points.normals)
            return true;
        m_normals = *points.normals;
        for (size_t i = 0; i < m_normals.size(); ++i)
            m_normals[i] *= m_lengths[i % m_lengths.size()];
        points.normals = &m_normals;
        points.changes = &m_changes;
        return true;
    }

private:
    std::vector<float> m_lengths;
    std::vector<RyVec3> m_normals;
    RyPointChanges m_changes;
};

} // namespace

/// Pictures and picks of a viewport that no display shows.
class RyOffscreenContextTest : public QObject, private ViewportStage
{
    Q_OBJECT
private slots:
    void init()
    {
        open();
        m_figure = addBoxFigure(*m_scene);
        m_viewport->resize(400, 300);
        m_viewport->setStandardView(Ry3DViewport::StandardView::Front);
        m_viewport->cameraController().frame(RyBox3(RyVec3(-40, -5, -5), RyVec3(40, 45, 5)), QSizeF(400, 300));
    }
    void cleanup() { close(); }

    void picturesShowFigureAndBackground()
    {
        const QImage picture = m_viewport->grabPicture(400, 300);
        QCOMPARE(picture.size(), QSize(400, 300));
        const QColor top = picture.pixelColor(20, 5);
        const QColor bottom = picture.pixelColor(20, 295);
        QVERIFY2(top.lightness() > bottom.lightness() + 10, "the background is lighter above");
        const QColor figure = picture.pixelColor(at(RyVec3(0, 20, 5)));
        QVERIFY2(figure.lightness() > top.lightness() + 30, "clay is lighter than the background");
        m_figure.figure->setHidden(true);
        const QColor gone = m_viewport->grabPicture(400, 300).pixelColor(at(RyVec3(0, 20, 5)));
        QVERIFY(gone.lightness() < figure.lightness() - 30);
    }

    void aPictureHalfRefinedIsNotTakenForTheKeptOne()
    {
        // More than is refined in one go.
        const int n = 260;
        std::vector<RyVec3> positions;
        std::vector<RyFacet> facets;
        for (int i = 0; i <= n; ++i) {
            for (int k = 0; k <= n; ++k)
                positions.emplace_back(-30.0f + 0.2f * float(k), 0.15f * float(i), 12.0f);
        }
        for (int i = 0; i < n; ++i) {
            for (int k = 0; k < n; ++k) {
                const int corner = i * (n + 1) + k;
                facets.push_back({{corner, corner + 1, corner + n + 2, corner + n + 1}, -1});
            }
        }
        auto *mesh = new RyFacetMesh;
        mesh->setPositions(std::move(positions));
        mesh->setFacets(std::move(facets));
        auto *object = new RyObject;
        object->addShape(new RyFacetShape(mesh));
        auto *sheet = new RyNode;
        sheet->setObject(object);
        m_scene->addNode(sheet);
        sheet->getYRotControl()->setValue(20);

        m_viewport->makeCurrent();
        RyViewPainter painter;
        painter.scene().setScene(m_scene.get(), m_manager->sceneRevision());
        const auto view = [this] {
            return RySceneView{RyViewMatrices(*m_viewport->getCamera(), 400, 300), {}, 400, 300};
        };
        const RyFramebuffer target(400, 300, 0);
        const auto paint = [&](const RySceneView &seen) {
            target.bind();
            painter.paint(seen, RyViewPainter::MostSamples, RyViewPainter::Depth::Cleared, [] {});
            return target.toImage();
        };
        const RySceneView front = view();
        const QImage first = paint(front);
        QCOMPARE(paint(front), first);
        m_viewport->setStandardView(Ry3DViewport::StandardView::Side);
        QVERIFY(!painter.scene().refine(view(), RyViewPainter::MostSamples));
        QCOMPARE(paint(front), first);
        while (!painter.scene().refine(view(), RyViewPainter::MostSamples))
            ;
        QVERIFY(paint(view()) != first);
        QCOMPARE(paint(front), first);
        QCOMPARE(painter.scene().paints(), 3);
        painter.release();
    }

    void thePictureFollowsThePose()
    {
        const QPoint beside = at(RyVec3(12, 28, 0));
        const QColor before = m_viewport->grabPicture(400, 300).pixelColor(beside);
        m_figure.upper->getZRotControl()->setValue(-60);
        const QColor after = m_viewport->grabPicture(400, 300).pixelColor(beside);
        QVERIFY(after.lightness() > before.lightness() + 30);
    }

    void lengthsOfNormalsChangeNoPicture()
    {
        const RyFacetMesh *mesh =
            static_cast<RyFacetShape *>(m_figure.figure->getObject()->getCurrentShape())->getFacetMesh();
        auto *prop = new RyNode;
        auto *object = new RyObject;
        object->addShape(new RyFacetShape(mesh->copy()));
        prop->setObject(object);
        prop->getXTransControl()->setValue(-18);
        prop->getYRotControl()->setValue(30);
        prop->getXScaleControl()->setValue(1.6);
        m_scene->addNode(prop);
        const QImage units = m_viewport->grabPicture(400, 300);
        object->addModifier(new StretchedNormals({0.2f, 1.0f, 7.0f}));
        const QImage stretched = m_viewport->grabPicture(400, 300);
        int most = 0;
        for (int y = 0; y < units.height(); ++y) {
            for (int x = 0; x < units.width(); ++x)
                most = std::max(most, std::abs(qGreen(units.pixel(x, y)) - qGreen(stretched.pixel(x, y))));
        }
        QVERIFY2(most <= 1, qPrintable(QString::number(most)));
    }

    void theToolIsDrawnAboveAndLetsFiguresShowThrough()
    {
        const QPoint place = at(RyVec3(0, 20, 5));
        const QColor solid = m_viewport->grabPicture(400, 300).pixelColor(place);
        auto *tool = new SquareTool;
        tool->squares = {{RyVec3(20, 20, 0), 7}};
        m_manager->addTool(tool);
        m_manager->setActiveTool(tool);
        const QImage picture = m_viewport->grabPicture(400, 300);
        QCOMPARE(picture.pixelColor(at(RyVec3(20, 20, 0))), QColor(0, 255, 0));
        QVERIFY(picture.pixelColor(place).lightness() < solid.lightness() - 5);
    }

    void samePictureTwice()
    {
        const QImage first = m_viewport->grabPicture(320, 240);
        const int paints = m_viewport->counts().scenePaints;
        QCOMPARE(m_viewport->grabPicture(320, 240), first);
        QCOMPARE(m_viewport->counts().scenePaints, paints);
    }

    void wireframeAddsEdges()
    {
        const QImage plain = m_viewport->grabPicture(400, 300);
        RyRenderOptions options = m_viewport->renderOptions();
        options.wireframe = true;
        m_viewport->setRenderOptions(options);
        const QImage wired = m_viewport->grabPicture(400, 300);
        // The edge between two rings of quads crosses the middle of the front.
        int darker = 0;
        const QPoint edge = at(RyVec3(0, 20, 5));
        for (int dy = -2; dy <= 2; ++dy) {
            const QPoint p = edge + QPoint(3, dy);
            darker += wired.pixelColor(p).lightness() < plain.pixelColor(p).lightness() - 20;
        }
        QVERIFY(darker >= 1 && darker <= 3);
        QVERIFY(qAbs(wired.pixelColor(edge + QPoint(3, 9)).lightness() -
                     plain.pixelColor(edge + QPoint(3, 9)).lightness()) < 5);
    }

    void picksWithoutADisplay()
    {
        auto *tool = new SquareTool;
        tool->squares = {{RyVec3(20, 20, 0), 7}, {RyVec3(-20, 20, 0), 200}};
        m_manager->addTool(tool);
        m_manager->setActiveTool(tool);
        QCOMPARE(m_viewport->pickOnGizmo(at(RyVec3(20, 20, 0))), 7);
        QCOMPARE(m_viewport->pickOnGizmo(at(RyVec3(-20, 20, 0))), 200);
        QCOMPARE(m_viewport->pickOnGizmo(at(RyVec3(0, 44, 0))), 0);
        QCOMPARE(m_viewport->pickNode(at(RyVec3(0, 33, 5))), m_figure.upper);
    }

    void twoViewportsShareTheContext()
    {
        Ry3DViewport other(m_manager.get());
        other.resize(200, 200);
        other.setStandardView(Ry3DViewport::StandardView::Side);
        const QImage first = m_viewport->grabPicture(300, 200);
        QVERIFY(other.grabPicture(300, 200) != first);
        QCOMPARE(m_viewport->grabPicture(300, 200), first);
    }

private:
    QPoint at(const RyVec3 &world) const
    {
        QPointF pixel;
        m_viewport->project(world, pixel);
        return QPoint(int(pixel.x()), int(pixel.y()));
    }
    ViewportTestFigure m_figure;
};

RY_TEST(RyOffscreenContextTest)
#include "tst_RyOffscreenContext.moc"
