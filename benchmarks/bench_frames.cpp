// Frames on whatever renderer there is: a figure of 214,000 vertices while the view turns and while a bone turns,
// beside the straight road (RyPlainPainter). The pictures of both are compared first.
//
// Arguments: --short for a small figure and few turns, or how many vertices.
#include "RyOffscreenProgram.h"
#include "RyPlainPainter.h"
#include "RyRoundRobin.h"
#include "RyTubeFigure.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/viewport/RyCameraController.h"
#include "rycore/viewport/drawing/RySplitMesh.h"
#include "rycore/viewport/drawing/RyViewPainter.h"

#include <cstdlib>

namespace {

constexpr int width = 1280;
constexpr int height = 900;

class Stage
{
public:
    explicit Stage(int vertices)
        : m_tube(&m_scene, vertices, 60), m_plain(m_tube.object, *m_tube.mesh, width, height),
          m_target(width, height, 0)
    {
        m_camera = new RyCamera;
        RyCameraController controller(m_camera);
        controller.frame(RyBox3(RyVec3(-40, 0, -40), RyVec3(40, 180, 40)), QSizeF(width, height));
        controller.setDirection(24, 7);
        bend();
    }
    void orbit() { RyCameraController(m_camera).orbit(QPointF(3, 0)); }
    void bend()
    {
        m_angle = m_angle > 20.0f ? 1.0f : m_angle + 0.5f;
        m_tube.chain[20]->getXRotControl()->setValue(m_angle);
        ++m_revision;
    }
    RySceneView view() const
    {
        RySceneView view{RyViewMatrices(*m_camera, width, height), {}, width, height};
        view.options.seeThrough = true;
        view.options.showGrid = false;
        view.options.showAxes = false;
        return view;
    }
    void deform() { m_tube.object->getDeformedPositions(); }
    void upload()
    {
        m_painter.scene().setScene(&m_scene, m_revision);
        glFinish();
    }
    void paint(int samples)
    {
        m_target.bind();
        m_painter.scene().setScene(&m_scene, m_revision);
        m_painter.paint(view(), samples, RyViewPainter::Depth::Undefined, [] {});
        glFinish();
    }
    void uploadPlainly()
    {
        m_plain.upload();
        glFinish();
    }
    void paintPlainly()
    {
        m_plain.drawScene(view());
        m_plain.drawFrame(m_target, [] {});
        glFinish();
    }
    QImage picture() const { return m_target.toImage(); }
    /// As after reading: nothing is kept of the object.
    void paintFirst()
    {
        m_painter.release();
        paint(1);
    }
    void paintFirstPlainly()
    {
        RyPlainPainter plain(m_tube.object, *m_fresh, width, height);
        m_edges = RySplitMesh::edgesOf(*m_fresh);
        plain.upload();
        plain.drawScene(view());
        plain.drawFrame(m_target, [] {});
        glFinish();
    }
    /// A mesh that does not know yet which facets are neighbours.
    void renewMesh() { m_fresh = m_tube.mesh->copy(); }

private:
    RyScene m_scene;
    RyTubeFigure m_tube;
    RyPlainPainter m_plain;
    RyFramebuffer m_target;
    RyViewPainter m_painter;
    RyRef<RyCamera> m_camera;
    quint64 m_revision = 1;
    RyRef<RyFacetMesh> m_fresh;
    std::vector<unsigned> m_edges;
    float m_angle = 0;
};

/// Part of the pixels of which a channel differs by more than three steps.
double difference(const QImage &a, const QImage &b)
{
    int different = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            const int most =
                std::max({std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)), std::abs(qBlue(p) - qBlue(q))});
            different += most > 3;
        }
    }
    return double(different) / (double(a.width()) * a.height());
}

} // namespace

int main(int argc, char **argv)
{
    const RyOffscreenProgram program(argc, argv);
    if (!program.canDraw())
        return 0;
    const bool isShort = program.isShort;
    const int vertices = program.number(5000, 214000);
    const int turns = isShort ? 2 : 15;
    std::printf("%d vertices on %s\n", vertices, reinterpret_cast<const char *>(glGetString(GL_RENDERER)));
    Stage stage(vertices);

    stage.paint(4);
    const QImage ours = stage.picture();
    stage.uploadPlainly();
    stage.paintPlainly();
    const double differs = difference(ours, stage.picture());
    std::printf("pixels that differ: %.4f %%\n", 100.0 * differs);
    if (differs > 0.002)
        return 1;

    std::puts("the view turns");
    RyRoundRobin orbit;
    orbit.add("straight road, four samples", [&] { stage.paintPlainly(); });
    orbit.before([&] { stage.orbit(); });
    orbit.add("ours while it turns", [&] { stage.paint(1); });
    orbit.before([&] { stage.orbit(); });
    orbit.add("ours refined", [&] { stage.paint(4); });
    orbit.before([&] { stage.orbit(); });
    orbit.run(turns);
    orbit.print();

    std::puts("a bone turns: deform, normals, upload");
    RyRoundRobin upload;
    upload.add("straight road", [&] { stage.uploadPlainly(); });
    upload.before([&] { stage.bend(); });
    upload.add("ours", [&] { stage.upload(); });
    upload.before([&] { stage.bend(); });
    upload.run(turns);
    upload.print();

    std::puts("a bone turns: the whole frame");
    RyRoundRobin pose;
    pose.add("straight road, four samples", [&] {
        stage.uploadPlainly();
        stage.paintPlainly();
    });
    pose.before([&] { stage.bend(); });
    pose.add("ours while it turns", [&] { stage.paint(1); });
    pose.before([&] { stage.bend(); });
    pose.run(turns);
    pose.print();

    std::puts("the first picture after reading");
    RyRoundRobin first;
    first.add("straight road, with arrays of edges", [&] { stage.paintFirstPlainly(); });
    first.before([&] { stage.renewMesh(); });
    first.add("ours", [&] { stage.paintFirst(); });
    first.run(isShort ? 1 : 7);
    first.print();
    return 0;
}
