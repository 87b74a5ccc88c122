#include "support/RyTest.h"
#include "viewport/ViewportTestScene.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyGLContext.h"
#include "rycore/viewport/RyViewportMgr.h"

#include <QDockWidget>
#include <QMainWindow>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QScreen>
#include <QWindow>

#include <functional>
#include <set>

using Change = std::function<void()>;
Q_DECLARE_METATYPE(Change)

/// A viewport keeps its picture of the scene: it is never out of date, and is painted anew only for what it shows.
class RyKeptPictureTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void neverOutOfDate();
    void contextsThatAreGoneAreNotMistaken();
    void paintedAnewOnlyForWhatItShows();
    void refinedWhenNothingHappens();
    void theHandComesBeforeRefining();

private:
    RyFacetShape *shape() const { return static_cast<RyFacetShape *>(m_figure.figure->getObject()->getCurrentShape()); }
    void look(const std::function<void(Ry3DViewport &)> &how)
    {
        how(*m_viewport);
        m_looks.push_back(how);
    }
    bool waitTillRefined() const
    {
        QTest::qWait(20); // frames that are asked for begin it anew
        return QTest::qWaitFor([this] { return m_viewport->isRefined(); }, 10000);
    }
    QImage onScreen() const;
    QImage fresh() const;
    /// How many channels of pixels differ by more than two steps.
    static int difference(const QImage &a, const QImage &b);

    std::unique_ptr<RyScene> m_scene;
    std::unique_ptr<RyViewportMgr> m_manager;
    std::unique_ptr<QMainWindow> m_window;
    QDockWidget *m_docks[2] = {};
    Ry3DViewport *m_viewport = nullptr; // the window's
    std::vector<std::function<void(Ry3DViewport &)>> m_looks;
    ViewportTestFigure m_figure;
    SquareTool *m_tool = nullptr;
    RyNode *m_prop = nullptr;
};

void RyKeptPictureTest::init()
{
    m_scene = std::make_unique<RyScene>();
    m_manager = std::make_unique<RyViewportMgr>(m_scene.get());
    m_figure = addBoxFigure(*m_scene);
    m_figure.upper->getXRotControl()->setValue(25);
    m_figure.figure->getZTransControl()->setValue(4);
    m_prop = new RyNode;
    auto *object = new RyObject;
    object->addShape(new RyFacetShape(shape()->getFacetMesh()->copy()));
    m_prop->setObject(object);
    m_prop->getXTransControl()->setValue(-18);
    m_prop->getYRotControl()->setValue(30);
    m_scene->addNode(m_prop);
    m_tool = new SquareTool;
    m_manager->addTool(m_tool);

    m_window = std::make_unique<QMainWindow>();
    m_viewport = new Ry3DViewport(m_manager.get());
    m_looks.clear();
    look([](Ry3DViewport &viewport) {
        viewport.setStandardView(Ry3DViewport::StandardView::Perspective);
        viewport.cameraController().frame(RyBox3(RyVec3(-30, -5, -10), RyVec3(30, 45, 10)), QSizeF(300, 300));
    });
    for (QDockWidget *&dock : m_docks) {
        dock = new QDockWidget(m_window.get());
        m_window->addDockWidget(Qt::LeftDockWidgetArea, dock);
    }
    m_docks[0]->setWidget(m_viewport);
    m_docks[1]->setWidget(new QWidget);
    m_window->resize(420, 640);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    QVERIFY(waitTillRefined());
}

void RyKeptPictureTest::cleanup()
{
    m_window.reset();
    m_manager.reset();
    m_scene.reset();
}

QImage RyKeptPictureTest::onScreen() const
{
    const QPoint corner = m_viewport->mapToGlobal(QPoint());
    return m_viewport->screen()
        ->grabWindow(0, corner.x(), corner.y(), m_viewport->width(), m_viewport->height())
        .toImage()
        .convertToFormat(QImage::Format_RGB32);
}

QImage RyKeptPictureTest::fresh() const
{
    Ry3DViewport viewport(m_manager.get());
    viewport.resize(m_viewport->size());
    viewport.setRenderOptions(m_viewport->renderOptions());
    for (const auto &how : m_looks)
        how(viewport);
    return viewport.grabPicture(viewport.width(), viewport.height());
}

int RyKeptPictureTest::difference(const QImage &a, const QImage &b)
{
    if (a.size() != b.size())
        return -1;
    int count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            count += std::abs(qRed(p) - qRed(q)) > 2;
            count += std::abs(qGreen(p) - qGreen(q)) > 2;
            count += std::abs(qBlue(p) - qBlue(q)) > 2;
        }
    }
    return count;
}

void RyKeptPictureTest::neverOutOfDate()
{
    RyFacetMesh *mesh = shape()->getFacetMesh();
    const auto option = [this](auto RyRenderOptions::*what, const auto &value) {
        return [this, what, value] {
            RyRenderOptions options = m_viewport->renderOptions();
            options.*what = value;
            m_viewport->setRenderOptions(options);
        };
    };
    const auto addParts = [&](float red) {
        return [this, mesh, red] {
            auto parts = std::make_shared<RyMeshParts>();
            RyMeshPart part;
            part.look = 0;
            for (int v = 0; v < mesh->getNumVertices(); ++v)
                part.vertexOfSplit.push_back(v);
            part.normalOfSplit = part.vertexOfSplit;
            for (const RyFacet &facet : mesh->getFacets()) {
                for (int c : {0, 1, 2, 0, 2, 3})
                    part.triangles.push_back(unsigned(facet.vertices[c]));
            }
            part.facetCount = mesh->getNumFacets();
            parts->parts.push_back(part);
            parts->normalCount = mesh->getNumVertices();
            RyMaterialLook material;
            material.baseColor = {red, 0.2f, 0.1f, 1};
            parts->looks.push_back(material);
            shape()->setParts(parts);
        };
    };
    const std::vector<std::pair<const char *, Change>> changes = {
        {"orbit", [this] { look([](Ry3DViewport &viewport) {
                               viewport.cameraController().orbit({35, -12});
                           }); }},
        {"no perspective",
         [this] { look([](Ry3DViewport &viewport) { viewport.cameraController().setOrthographic(true); }); }},
        {"look", option(&RyRenderOptions::clay, QColor(90, 120, 200))},
        {"backdrop", option(&RyRenderOptions::backgroundTop, QColor(10, 80, 40))},
        {"wireframe", option(&RyRenderOptions::wireframe, true)},
        {"no grid", option(&RyRenderOptions::showGrid, false)},
        {"a tool that looks inside", [this] { m_manager->setActiveTool(m_tool); }},
        {"no tool", [this] { m_manager->setActiveTool(nullptr); }},
        {"pose", [this] { m_figure.upper->getZRotControl()->setValue(20); }},
        {"another place", [this] { m_prop->getXTransControl()->setValue(16); }},
        {"hidden", [this] { m_figure.figure->setHidden(true); }},
        {"shown", [this] { m_figure.figure->setHidden(false); }},
        {"one of two hidden, the other in its place",
         [this] {
             m_figure.figure->setHidden(true);
             m_prop->getXTransControl()->setValue(0);
         }},
        {"both", [this] { m_figure.figure->setHidden(false); }},
        {"as many other facets",
         [mesh] {
             std::vector<RyFacet> facets = mesh->getFacets();
             facets[3] = facets[4];
             facets[9] = facets[10];
             mesh->setFacets(facets);
         }},
        {"other positions",
         [mesh] {
             std::vector<RyVec3> positions = mesh->getPositions();
             for (RyVec3 &p : positions)
                 p.x *= 1.4f;
             mesh->setPositions(positions);
         }},
        {"a material", addParts(0.9f)},
        {"another material", addParts(0.1f)},
        {"another mesh",
         [this] {
             RyFacetMesh *other = shape()->getFacetMesh()->copy();
             std::vector<RyVec3> positions = other->getPositions();
             for (RyVec3 &p : positions)
                 p.z *= 1.5f;
             other->setPositions(positions);
             shape()->setFacetMesh(other);
         }},
        {"without it", [this] { m_prop->setObject(nullptr); }},
        {"another dock", [this] { m_docks[1]->setWidget(m_viewport); }},
        {"a floating dock", [this] { m_docks[1]->setFloating(true); }},
        {"pose, elsewhere", [this] { m_figure.upper->getZRotControl()->setValue(-20); }},
        {"another size", [this] { m_docks[1]->resize(330, 270); }},
        {"back again",
         [this] {
             m_docks[1]->setFloating(false);
             m_docks[0]->setWidget(m_viewport);
         }},
        {"removed", [this] { m_scene->removeNode(m_figure.figure); }}};
    QImage last;
    QSize lastSize;
    for (const auto &[name, change] : changes) {
        change();
        QVERIFY(QTest::qWaitForWindowExposed(m_viewport->window()));
        QVERIFY(waitTillRefined());
        const QImage now = onScreen();
        const int differs = difference(now, fresh());
        QVERIFY2(differs == 0, qPrintable(QStringLiteral("%1: %2").arg(QLatin1String(name)).arg(differs)));
        if (!QByteArray(name).contains("dock") && now.size() == lastSize)
            QVERIFY2(difference(now, last) != 0, name);
        last = now;
        lastSize = now.size();
    }
}

void RyKeptPictureTest::contextsThatAreGoneAreNotMistaken()
{
    // A new context often comes to lie where an old one was.
    std::set<quint64> numbers;
    for (int i = 1; i <= 6; ++i) {
        QOffscreenSurface surface;
        surface.create();
        QOpenGLContext context;
        QVERIFY(context.create());
        QVERIFY(context.makeCurrent(&surface));
        const quint64 number = RyGLContext::currentNumber();
        QVERIFY(number != 0);
        QCOMPARE(RyGLContext::currentNumber(), number);
        numbers.insert(number);
        QCOMPARE(int(numbers.size()), i);
        context.doneCurrent();
        QCOMPARE(RyGLContext::currentNumber(), quint64(0));
    }
    m_viewport->makeCurrent();
    QVERIFY(!numbers.count(RyGLContext::currentNumber()));
}

void RyKeptPictureTest::paintedAnewOnlyForWhatItShows()
{
    m_figure.upper->getXRotControl()->setValue(0); // at rest
    m_manager->setActiveTool(m_tool);
    QVERIFY(waitTillRefined());
    const RyViewportCounts before = m_viewport->counts();
    const std::vector<std::pair<const char *, Change>> changes = {
        {"selection", [this] { m_scene->setSelection({m_figure.upper}); }},
        {"a hidden bone", [this] { m_figure.lower->setHidden(true); }},
        {"a shown bone", [this] { m_figure.lower->setHidden(false); }},
        {"an end point",
         [this] {
             m_figure.lower->setEndPoint({2, 18, 1});
         }},
        {"the tool's own", [this] { m_tool->drawnDataChanged(); }}};
    for (const auto &[name, change] : changes) {
        const int frames = m_viewport->counts().framePaints;
        change();
        QVERIFY2(QTest::qWaitFor([&] { return m_viewport->counts().framePaints > frames; }, 5000), name);
        QVERIFY(waitTillRefined());
        QVERIFY2(m_viewport->counts().scenePaints == before.scenePaints, name);
        QVERIFY2(m_viewport->counts().refinements == before.refinements, name);
        QVERIFY2(m_viewport->counts().positionUploads == before.positionUploads, name);
    }
}

void RyKeptPictureTest::refinedWhenNothingHappens()
{
    const RyViewportCounts before = m_viewport->counts();
    const QImage still = onScreen();
    look([](Ry3DViewport &viewport) { viewport.cameraController().orbit({1, 0}); });
    QVERIFY(QTest::qWaitFor([&] { return m_viewport->counts().framePaints > before.framePaints; }, 5000));
    QVERIFY(!m_viewport->isRefined());
    QCOMPARE(m_viewport->counts().scenePaints, before.scenePaints + 1);
    QCOMPARE(m_viewport->counts().refinements, before.refinements);
    const QImage coarse = onScreen();
    QVERIFY(waitTillRefined());
    QCOMPARE(m_viewport->counts().scenePaints, before.scenePaints + 1);
    QCOMPARE(m_viewport->counts().refinements, before.refinements + 1);
    QVERIFY(difference(coarse, onScreen()) > 0);
    QCOMPARE(difference(onScreen(), fresh()), 0);
    // Nothing goes on after that.
    const int frames = m_viewport->counts().framePaints;
    QTest::qWait(600);
    QCOMPARE(m_viewport->counts().framePaints, frames);
}

void RyKeptPictureTest::theHandComesBeforeRefining()
{
    const RyViewportCounts before = m_viewport->counts();
    look([](Ry3DViewport &viewport) { viewport.cameraController().orbit({1, 0}); });
    ViewportMouse mouse(*m_viewport);
    for (int i = 0; i < 12; ++i) {
        QTest::qWait(50);
        mouse.move(QPoint(100 + i, 100));
    }
    QCOMPARE(m_viewport->counts().refinements, before.refinements);
    QVERIFY(waitTillRefined());
    QCOMPARE(m_viewport->counts().refinements, before.refinements + 1);
}

RY_TEST(RyKeptPictureTest)

#include "tst_keptPicture.moc"
