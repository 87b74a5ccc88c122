// The weights of a joint parameter on a figure: 200,000 facets that fill the view, beside immediate mode; and a frame
// while the parameter is dragged, on a figure of 100,000 vertices at rest and on a posed one. Pictures are compared
// first, and what is painted, uploaded and made anew is counted.
//
// Argument: how often each way is timed (31), or --short for small figures and a few times.
#include "RyParametricSheet.h"
#include "RyRoundRobin.h"

#include "pluginsource/RyJointTools/tool/drawing/RyToolDrawing.h"
#include "pluginsource/RyJointTools/tool/joint/RyJointState.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/math/RyColorGradient.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/viewport/RyGL.h"
#include "rycore/viewport/RyOffscreenContext.h"
#include "rycore/viewport/RyViewportMgr.h"
#include "rycore/viewport/drawing/RyFramebuffer.h"
#include "rycore/viewport/drawing/RySceneView.h"
#include "rycore/viewport/drawing/RyViewPainter.h"

#include <QApplication>

#include <cstdlib>

namespace {

constexpr int Width = 1280;
constexpr int Height = 900;
bool isShort = false;

void tell(const char *what, double ratio, double most)
{
    std::printf("  => %-60s %6.3f  (at most %.2f%s)\n", what, ratio, most, isShort || ratio <= most ? "" : ", MISSED");
}

void check(bool good, const char *what)
{
    if (good)
        return;
    std::printf("WRONG: %s\n", what);
    std::exit(1);
}

/// A figure, the bend of one of its bones as the current parameter, and a view of it all.
class Stage
{
public:
    Stage(int facets, int bones, int current)
        : m_sheet(ryScene(), facets, bones), m_manager(ryScene()), m_target(Width, Height, 0), m_camera(new RyCamera)
    {
        RyBone *bone = m_sheet.chain[size_t(current)];
        m_own = static_cast<RyLegacyBendParam *>(
            m_sheet.binding->findJoint(bone)->findParam(RyLegacyJointParam::Bend, bone, 1));
        check(m_own && m_own->findPartner(), "a bend with a partner");
        m_joint.node = bone;
        m_joint.parent = bone->getNodeParent();
        m_joint.param = {m_own, m_own};
        m_joint.partner = {m_own->findPartner(), m_own->findPartner()};
        m_display.boneDrawMode = RyJointToolDisplay::NoBones;
        m_display.drawMeshBoundaries = false;
        look(0.0f);
        m_start = m_own->angleValues();
    }
    ~Stage()
    {
        m_drawing.reset();
        ryScene()->clear();
    }

    void look(float aside) { m_camera->lookAt({aside, 0, 118}, {aside, 0, 0}); }
    void turn()
    {
        m_step = !m_step;
        look(m_step ? 0.5f : 0.0f);
    }
    /// Of the angle between which and the next one all vertices are.
    void drag()
    {
        m_way = m_way > 20.0f ? 0.0f : m_way + 1.5f;
        m_own->setAnglePushing(0, float((double(m_start[0]) + double(m_way)) * 0.0174532925), true, m_start);
        m_own->findPartner()->copyValuesFrom(*m_own);
    }
    void pose()
    {
        for (RyBone *bone : m_sheet.chain)
            bone->getYRotControl()->setValue(4.0f);
    }
    RyJointToolDisplay &display() { return m_display; }

    void begin() const
    {
        m_target.bind();
        glViewport(0, 0, Width, Height);
        glClearColor(0.35f, 0.36f, 0.38f, 1);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        setState();
        RyViewMatrices(*m_camera, Width, Height).load();
    }
    QImage picture(const std::function<void()> &draw) const
    {
        begin();
        draw();
        return m_target.toImage();
    }
    void draw()
    {
        const RyBoneIndex none;
        const RyDrawContext context{false, 0, m_display, m_joint.node, none, nullptr};
        m_drawing->draw(context, m_joint);
    }
    const RyWeightDrawing &drawing() const { return *m_drawing; }

    /// By the letter: for each facet and each of its corners the weights are looked up and the colours mixed.
    void drawLiterally() const
    {
        RyColorGradient gradient;
        gradient.addGradientColor(0.0f, m_display.staticColor);
        gradient.addGradientColor(1.0f, m_display.dynamicColor);
        const RyWeightMap *maps[2] = {m_own->getWeights(m_sheet.figure),
                                      m_own->findPartner()->getWeights(m_sheet.figure)};
        const std::vector<RyVec3> &positions = m_sheet.figure->getObject()->getDeformedPositions();
        forSides([&](const RyFaceGroup &group, bool isPartner) {
            for (int i = 0; i < group.getFacets().count(); ++i) {
                const RyFacet &facet = m_sheet.mesh->getFacet(group.getFacets().getIndex(i));
                glBegin(facet.isTriangle() ? GL_TRIANGLES : GL_QUADS);
                for (int k = 0; k < facet.count(); ++k) {
                    const int vertex = facet.vertices[k];
                    const float own = maps[isPartner]->getFloatWeight(vertex);
                    const float partner = maps[!isPartner]->getFloatWeight(vertex);
                    const QColor color = gradient.getColor(std::max(own, partner));
                    glColor4ub(GLubyte(color.red()), GLubyte(color.green()), GLubyte(color.blue()),
                               GLubyte(m_display.weightOpacity));
                    glVertex3fv(&positions[size_t(vertex)].x);
                }
                glEnd();
            }
        });
    }
    /// Immediate mode at its best: one list of corners with colours.
    struct Corner
    {
        RyVec3 position;
        RyWeightColors::Bytes color;
    };
    std::vector<Corner> corners() const
    {
        std::vector<Corner> corners;
        for (const RyKeptWeights &kept : m_drawing->kept()) {
            for (const unsigned vertex : kept.quads())
                corners.push_back({kept.positions()[vertex], kept.colors()[vertex]});
        }
        return corners;
    }
    static void drawCorners(const std::vector<Corner> &corners)
    {
        glBegin(GL_QUADS);
        for (const Corner &corner : corners) {
            glColor4ubv(corner.color.data());
            glVertex3fv(&corner.position.x);
        }
        glEnd();
    }

    /// A whole frame over the kept picture of the scene.
    void paint()
    {
        m_target.bind();
        m_painter.scene().setScene(ryScene(), m_manager.sceneRevision());
        const RySceneView view{RyViewMatrices(*m_camera, Width, Height), {}, Width, Height};
        m_painter.paint(view, 1, RyViewPainter::Depth::Cleared, [&] {
            view.matrices.load();
            glPushAttrib(GL_ALL_ATTRIB_BITS);
            setState();
            draw();
            glPopAttrib();
        });
        glFinish();
    }
    const RyScenePicture &scene() const { return m_painter.scene(); }
    const RyLegacyDeformer &deformer() const { return m_sheet.binding->deformer(); }
    void deform() { m_sheet.figure->getObject()->getDeformedPoints(); }
    void readWeights() const
    {
        m_own->getWeights(m_sheet.figure);
        m_own->findPartner()->getWeights(m_sheet.figure);
    }
    std::vector<int> builds() const
    {
        std::vector<int> builds;
        for (int i = 0; i < int(deformer().rig().params.size()); ++i)
            builds.push_back(deformer().weightBuilds(i));
        return builds;
    }

private:
    static void setState()
    {
        glEnable(GL_DEPTH_TEST);
        glDepthFunc(GL_LEQUAL);
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glDisable(GL_LIGHTING);
        glLineWidth(1.5f);
    }
    template<typename Work>
    void forSides(const Work &work) const
    {
        work(*m_sheet.mesh->findFaceGroup(m_own->getJoint()->getGroupName()), false);
        work(*m_sheet.mesh->findFaceGroup(m_own->findPartner()->getJoint()->getGroupName()), true);
    }

    RyParametricSheet m_sheet;
    RyViewportMgr m_manager;
    RyFramebuffer m_target;
    RyRef<RyCamera> m_camera;
    RyViewPainter m_painter;
    RyLegacyBendParam *m_own;
    RyJointState m_joint;
    RyJointToolDisplay m_display;
    std::unique_ptr<RyWeightDrawing> m_drawing = std::make_unique<RyWeightDrawing>();
    RyBendAngles::Values m_start;
    float m_way = 0;
    bool m_step = false;
};

/// Part of the pixels that differ by more than rounding of colours.
double difference(const QImage &a, const QImage &b)
{
    int different = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QColor p = a.pixelColor(x, y);
            const QColor q = b.pixelColor(x, y);
            const int most =
                std::max({std::abs(p.red() - q.red()), std::abs(p.green() - q.green()), std::abs(p.blue() - q.blue())});
            different += most > 3;
        }
    }
    return double(different) / (double(a.width()) * a.height());
}

void measureDrawing(int turns)
{
    Stage stage(isShort ? 10000 : 200000, 2, 1);
    const QImage expected = stage.picture([&] { stage.drawLiterally(); });
    const double differing = difference(expected, stage.picture([&] { stage.draw(); }));
    const double covered = difference(expected, stage.picture([] {}));
    std::printf("%.1f %% of the pixels show weights, %.4f %% differ\n", 100 * covered, 100 * differing);
    check(covered > 0.9 && differing < 0.001, "the pictures differ");
    const std::vector<Stage::Corner> corners = stage.corners();
    std::printf("%zu facets\n", corners.size() / 4);

    RyRoundRobin ways;
    const auto frame = [&](const std::function<void()> &draw) {
        return [&stage, draw] {
            stage.begin();
            draw();
            glFinish();
        };
    };
    const size_t plain = ways.add("immediate mode, colours prepared", frame([&] { Stage::drawCorners(corners); }));
    const size_t literal = ways.add("immediate mode by the letter", frame([&] { stage.drawLiterally(); }));
    const size_t turning = ways.add("ours, the view turns", [&] {
        stage.turn();
        frame([&] { stage.draw(); })();
    });
    const size_t fading = ways.add("ours, another opacity", [&] {
        stage.display().weightOpacity ^= 1;
        frame([&] { stage.draw(); })();
    });
    const size_t same = ways.add("ours, nothing changes", frame([&] { stage.draw(); }));
    ways.before([&] { stage.draw(); });
    const int uploads = stage.drawing().uploads();
    stage.turn();
    stage.picture([&] { stage.draw(); });
    check(stage.drawing().uploads() == uploads, "a view that turns uploads nothing");
    ways.run(turns);
    ways.print();
    tell("the view turns, of immediate mode with colours prepared", ways.ratio(turning, plain), 0.9);
    tell("the same, of immediate mode by the letter", ways.ratio(turning, literal), 0.9);
    tell("another opacity, of immediate mode by the letter", ways.ratio(fading, literal), 0.9);
    tell("nothing changes, of immediate mode with colours prepared", ways.ratio(same, plain), 0.9);
}

void measureDrag(int turns)
{
    Stage stage(isShort ? 5000 : 100000, 30, 15);
    stage.paint();
    stage.drag();
    stage.paint();
    const auto count = [&] {
        const RyWeightCounts &here = stage.drawing().kept()[0].counts();
        const RyWeightCounts &there = stage.drawing().kept()[1].counts();
        return std::vector<int>{stage.scene().paints(),       stage.scene().uploads(),
                                here.facets + there.facets,   here.positions + there.positions,
                                here.weights + there.weights, here.colors + there.colors,
                                stage.drawing().uploads(),    stage.drawing().paints()};
    };
    const std::vector<int> before = count();
    const std::vector<int> buildsBefore = stage.builds();
    stage.drag();
    stage.paint();
    std::vector<int> made = count();
    for (size_t i = 0; i < made.size(); ++i)
        made[i] -= before[i];
    std::vector<int> builds = stage.builds();
    int built = 0;
    for (size_t i = 0; i < builds.size(); ++i)
        built += builds[i] - buildsBefore[i];
    std::printf(
        "\na frame of a drag at rest: %d pictures of the scene, %d uploads of the mesh, %d parameters evaluated; "
        "of the weights drawn %d lists of facets, %d positions, %d colours, %d uploads\n",
        made[0], made[1], built, made[2], made[3], made[5], made[6]);
    check(made == (std::vector<int>{0, 0, 0, 0, 2, 2, 2, 1}), "a drag at rest makes colours alone");
    check(built == 2, "a drag evaluates the parameter and its partner");

    RyRoundRobin ways;
    const size_t kept = ways.add("frame, nothing changes", [&] { stage.paint(); });
    const size_t dragged = ways.add("frame, parameter dragged at rest", [&] {
        stage.drag();
        stage.paint();
    });
    ways.add("  of it the binding's weights and points", [&] {
        stage.drag();
        stage.deform();
    });
    ways.add("  of it the two weight maps", [&] { stage.readWeights(); });
    const size_t faded = ways.add("frame, colours and picture of weights alone", [&] {
        stage.display().weightOpacity ^= 1;
        stage.paint();
    });
    ways.run(turns);
    ways.print();
    std::printf("  dragged at rest / nothing changes: %.2f; without its picture of weights and its colours: %.2f\n",
                ways.ratio(dragged, kept), (ways.median(dragged) - ways.median(faded)) / ways.median(kept));
    stage.pose();
    stage.paint();
    RyRoundRobin posed;
    posed.add("frame, nothing changes", [&] { stage.paint(); });
    posed.add("frame, parameter dragged, all bones posed", [&] {
        stage.drag();
        stage.paint();
    });
    posed.run(turns);
    posed.print();
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    isShort = argc > 1 && qstrcmp(argv[1], "--short") == 0;
    const int turns = isShort ? 2 : argc > 1 ? std::atoi(argv[1]) : 31;
    if (!RyOffscreenContext::instance().makeCurrent()) {
        std::puts("no OpenGL here");
        return 0;
    }
    std::printf("%s, %d x %d\n", reinterpret_cast<const char *>(glGetString(GL_RENDERER)), Width, Height);
    measureDrawing(turns);
    measureDrag(turns);
    ryDestroyScene();
    return 0;
}
