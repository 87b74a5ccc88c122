// A frame while a joint is dragged on a figure at rest, and one in which the tool alone draws something new: what they
// cost must not depend on the figure. Counts what is painted, uploaded and deformed.
//
// Arguments: how many frames are timed (31). With a folder of models in RY_MODELS its mh_large.glb is taken too.
#include "RyLiteralDrawing.h"
#include "RyOffscreenProgram.h"
#include "RyPlainPainter.h"
#include "RyRoundRobin.h"
#include "RyTubeFigure.h"

#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include "rycore/base/RyAppSettings.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyCameraController.h"
#include "rycore/viewport/RyDrawStyle.h"
#include "rycore/viewport/RyViewportMgr.h"
#include "rycore/viewport/drawing/RyViewPainter.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdlib>

namespace {

constexpr int width = 1280;
constexpr int height = 900;

struct Model
{
    RySkeleton *figure = nullptr;
    RyBone *bone = nullptr; // the one that is moved
};

Model makeTube(int vertices)
{
    ryScene()->clear();
    const RyTubeFigure tube(ryScene(), vertices, 160);
    return {tube.figure, tube.chain[80]};
}

/// Nothing where it cannot be read.
Model openFile(const QString &path)
{
    QString error;
    if (!QFileInfo(path).isFile() || !RySceneFile::open(ryScene(), path, &error))
        return {};
    RySkeleton *figure = ryScene()->getSkeletons().front();
    const std::vector<RyBone *> bones = figure->getAllBones();
    return {figure, bones[bones.size() / 2]};
}

class Stage
{
public:
    explicit Stage(const Model &model)
        : m_model(model), m_manager(ryScene()), m_viewport(&m_manager),
          m_plain(model.figure->getObject(), *meshOf(*model.figure), width, height), m_target(width, height, 0),
          m_other(width, height, 0)
    {
        m_viewport.resize(width, height);
        m_viewport.frameNodes(false);
        RyCameraController(m_viewport.getCamera()).setDirection(24, 7);
        m_tool = new RyJointEditorTool;
        m_manager.addTool(m_tool);
        m_manager.setActiveTool(m_tool);
        ryScene()->setSelection({bone()});
        QCoreApplication::sendPostedEvents();
        m_plain.upload();
        m_plain.drawScene(view());
    }

    void drag()
    {
        m_way = m_way > 1.0f ? 0.0f : m_way + 0.1f;
        bone()->setEndPoint(m_end + RyVec3(m_way, 0, 0));
    }
    void paint(int samples)
    {
        m_target.bind();
        m_painter.scene().setScene(ryScene(), m_manager.sceneRevision());
        m_painter.paint(view(), samples, toolDepth(),
                        [this] { drawTool(m_tool->needsDepth(), [this] { m_tool->draw(&m_viewport, style()); }); });
        glFinish();
    }
    /// What is left of a frame when the tool draws nothing.
    void paintWithoutTool(int samples)
    {
        m_target.bind();
        m_painter.scene().setScene(ryScene(), m_manager.sceneRevision());
        m_painter.paint(view(), samples, toolDepth(), [] {});
        glFinish();
    }
    /// Four samples, and bones and handles by the letter.
    void paintPlainly()
    {
        const RyLiteralDrawing literal(RyLiteralDrawing::Pass::Normal, true);
        m_plain.drawFrame(m_target, [&] {
            drawTool(true, [&] {
                literal.drawFromScene(*m_model.figure);
                literal.drawHandles(*bone());
            });
        });
        glFinish();
    }
    void blit()
    {
        m_target.resolveInto(m_other);
        glFinish();
    }
    const RyScenePicture &scene() const { return m_painter.scene(); }
    qint64 touched() const
    {
        return m_model.figure->getObject()->findModifier<RySkinBinding>()->deformer().totalTouched();
    }

private:
    static const RyFacetMesh *meshOf(const RyNode &node)
    {
        return qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(&node))->getFacetMesh();
    }
    RyBone *bone() const { return m_model.bone; }
    RyViewPainter::Depth toolDepth() const
    {
        return m_tool->needsDepth() ? RyViewPainter::Depth::Cleared : RyViewPainter::Depth::Undefined;
    }
    static RyDrawStyle style() { return RyDrawStyle(RyDrawStyle::Textured); }
    RySceneView view() const
    {
        RySceneView view{RyViewMatrices(*m_viewport.getCamera(), width, height), {}, width, height};
        view.options.seeThrough = true;
        return view;
    }
    template<typename Draw>
    void drawTool(bool withDepth, const Draw &draw) const
    {
        view().matrices.load();
        glPushAttrib(GL_ALL_ATTRIB_BITS);
        (withDepth ? glEnable : glDisable)(GL_DEPTH_TEST);
        glDepthFunc(GL_LEQUAL);
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glDisable(GL_LIGHTING);
        glLineWidth(1.5f);
        draw();
        glPopAttrib();
    }

    Model m_model;
    RyViewportMgr m_manager;
    Ry3DViewport m_viewport;
    RyJointEditorTool *m_tool;
    RyPlainPainter m_plain;
    RyFramebuffer m_target;
    RyFramebuffer m_other;
    RyViewPainter m_painter;
    const RyVec3 m_end = bone()->getEndPoint();
    float m_way = 0;
};

/// Milliseconds of a frame of a drag.
double measure(const char *name, const Model &model, int turns)
{
    Stage stage(model);
    stage.paint(4);
    stage.drag();
    const int paints = stage.scene().paints();
    const int uploads = stage.scene().uploads();
    const qint64 touched = stage.touched();
    RyRoundRobin ways;
    ways.add("dragged joint, one sample", [&] {
        stage.drag();
        stage.paint(1);
    });
    ways.add("tool alone, one sample", [&] { stage.paint(1); });
    ways.add("tool alone, four samples", [&] { stage.paint(4); });
    ways.add("straight road, four samples", [&] { stage.paintPlainly(); });
    ways.add("blit of the view", [&] { stage.blit(); });
    ways.add("no tool, one sample", [&] { stage.paintWithoutTool(1); });
    ways.add("no tool, four samples", [&] { stage.paintWithoutTool(4); });
    ways.run(turns);
    std::printf("%s, %zu bones: %d pictures of the scene, %d uploads, %lld vertices deformed\n", name,
                model.figure->getAllBones().size(), stage.scene().paints() - paints, stage.scene().uploads() - uploads,
                stage.touched() - touched);
    ways.print();
    std::printf("  tool alone, one sample: %.2f blits; four samples: %.2f of the straight road\n", ways.ratio(1, 4),
                ways.ratio(2, 3));
    if (stage.scene().paints() != paints || stage.scene().uploads() != uploads || stage.touched() != touched) {
        std::puts("a drag at rest must cost none of these");
        std::exit(1);
    }
    return ways.median(0);
}

} // namespace

int main(int argc, char **argv)
{
    const RyOffscreenProgram program(argc, argv);
    const QTemporaryDir settings;
    RyAppSettings::setSettingsPath(settings.path());
    if (!program.canDraw())
        return 0;
    const int turns = program.number(2, 31);
    const double little = measure("few vertices", makeTube(5000), turns);
    const double much = measure("many vertices", makeTube(program.isShort ? 20000 : 500000), turns);
    std::printf("dragged joint, many vertices / few: %.2f\n", much / little);
    const Model file = openFile(qEnvironmentVariable("RY_MODELS") + QStringLiteral("/mh_large.glb"));
    if (file.figure)
        measure("mh_large.glb", file, turns);
    else
        std::puts("mh_large.glb is not there, or RY_MODELS does not name its folder");
    ryDestroyScene();
    return 0;
}
