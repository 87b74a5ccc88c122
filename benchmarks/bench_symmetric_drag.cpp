// A joint of the posed sample figure is dragged with the mouse, from the press to the release, while symmetric editing
// carries the drag over to the other side, beside the same drag without: the tool alone, and with the mesh deformed
// after each move as a frame needs it. Where the bones of both sides go is compared first.
//
// Arguments: how many drags are timed (31), or --short for a few, of which no time is judged.
#include "RyOffscreenProgram.h"
#include "RyRoundRobin.h"

#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleId.h"

#include "rycore/base/RyAppSettings.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RySymmetricEditing.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/math/RyQuat.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyViewportMgr.h"

#include <QMouseEvent>
#include <QTemporaryDir>

namespace {

constexpr int Moves = 60;
constexpr double MostForBothSides = 2.2;
constexpr float Near = 1e-3f; // cm

/// Whatever is pressed is the handle that a test wants.
class HandleViewport : public Ry3DViewport
{
public:
    using Ry3DViewport::Ry3DViewport;
    int pickOnGizmo(const QPoint &) override { return id; }

    int id = HandleId::CenterPoint;
};

struct Options
{
    const char *name;
    bool propagates, snaps, aligns;
};

class Stage
{
public:
    Stage() : m_manager(ryScene()), m_viewport(&m_manager), m_tool(new RyJointEditorTool)
    {
        m_viewport.resize(1280, 900);
        m_manager.addTool(m_tool);
        m_manager.setActiveTool(m_tool);
    }
    bool open(const char *path)
    {
        QString error;
        if (!RySceneFile::open(ryScene(), QString::fromUtf8(path), &error))
            return false;
        m_figure = ryScene()->getSkeletons().front();
        m_bone = m_figure->findBone(QStringLiteral("lShldr"));
        for (RyBone *bone : m_figure->getAllBones())
            bone->getZRotControl()->setValue(7.0f);
        m_viewport.frameNodes(false);
        ryScene()->setSelection({m_bone});
        QCoreApplication::sendPostedEvents();
        return true;
    }
    size_t bones() const { return m_figure->getAllBones().size(); }
    int vertices() const { return int(m_figure->getObject()->getDeformedPositions().size()); }

    void setOptions(const Options &options)
    {
        m_tool->setPropagateTranslation(options.propagates);
        m_tool->setAutoSnapEndPoints(options.snaps);
        m_tool->setAutoAlign(options.aligns);
    }
    /// Bones are paired and memory is warm; the scene is as it was opened.
    void makeReady(bool isSymmetric)
    {
        RySymmetricEditing::of(*ryScene()).setOn(isSymmetric);
        drag(false);
        takeBack();
    }
    void takeBack() { ryUndoStack()->undo(); }

    void drag(bool deforms)
    {
        QPointF place;
        m_viewport.project(m_bone->getWSPos(), place);
        const QPoint from = place.toPoint();
        mouse(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
        for (int i = 1; i <= Moves; ++i) {
            mouse(QEvent::MouseMove, from + QPoint(i, i / 2), Qt::NoButton, Qt::LeftButton);
            if (deforms)
                m_figure->getObject()->getDeformedPositions();
        }
        mouse(QEvent::MouseButtonRelease, from + QPoint(Moves, Moves / 2), Qt::LeftButton, Qt::NoButton);
    }

    /// The dragged side goes where it goes without symmetric editing, the other one opposite.
    bool isRight()
    {
        makeReady(false);
        const std::vector<RyVec3> before = points('l');
        drag(false);
        const std::vector<RyVec3> wanted = points('l');
        takeBack();
        makeReady(true);
        drag(false);
        const std::vector<RyVec3> left = points('l');
        std::vector<RyVec3> right = points('r');
        for (RyVec3 &point : right)
            point.x = -point.x;
        takeBack();
        return distance(before, wanted) > 1.0f && distance(left, wanted) < Near && distance(right, wanted) < Near &&
               distance(points('l'), before) == 0.0f;
    }

private:
    void mouse(QEvent::Type type, const QPoint &point, Qt::MouseButton button, Qt::MouseButtons buttons)
    {
        QMouseEvent event(type, point, button, buttons, Qt::NoModifier);
        if (type == QEvent::MouseButtonPress)
            m_tool->mousePress(&m_viewport, &event, RyViewMouseModifier::None);
        else if (type == QEvent::MouseMove)
            m_tool->mouseMove(&m_viewport, &event, RyViewMouseModifier::None);
        else
            m_tool->mouseRelease(&m_viewport, &event, RyViewMouseModifier::None);
    }
    /// Origins, end points and axes of the bones of an arm.
    std::vector<RyVec3> points(char side) const
    {
        std::vector<RyVec3> points;
        for (const char *name : {"Collar", "Shldr", "Forearm", "Hand", "Thumb1", "Mid3"}) {
            const RyNode *bone = m_figure->findBone(QLatin1Char(side) + QString::fromLatin1(name));
            points.push_back(bone->getOrigin());
            points.push_back(bone->getEndPoint());
        }
        return points;
    }
    static float distance(const std::vector<RyVec3> &a, const std::vector<RyVec3> &b)
    {
        float most = 0.0f;
        for (size_t i = 0; i < a.size(); ++i)
            most = std::max(most, (a[i] - b[i]).length());
        return most;
    }

    RyViewportMgr m_manager;
    HandleViewport m_viewport;
    RyJointEditorTool *m_tool;
    RySkeleton *m_figure = nullptr;
    RyBone *m_bone = nullptr;
};

/// The larger one of the ratios.
double measure(Stage &stage, const Options &options, int turns)
{
    RyRoundRobin ways;
    for (const bool deforms : {false, true}) {
        for (const bool isSymmetric : {false, true}) {
            const std::string way = isSymmetric ? "both sides" : "one side";
            ways.add(
                way + (deforms ? ", mesh deformed" : ", tool alone"), [&stage, deforms] { stage.drag(deforms); },
                [&stage, isSymmetric](const RyRoundRobin::Work &timed) {
                    stage.makeReady(isSymmetric);
                    timed();
                    stage.takeBack();
                });
        }
    }
    ways.run(turns);
    std::printf("%s\n", options.name);
    ways.print();
    const double alone = ways.cpuMedian(1) / ways.cpuMedian(0);
    const double deformed = ways.cpuMedian(3) / ways.cpuMedian(2);
    std::printf("  both sides / one side, processors' time: tool alone %.2f, mesh deformed %.2f\n", alone, deformed);
    return std::max(alone, deformed);
}

} // namespace

int main(int argc, char **argv)
{
    const RyOffscreenProgram program(argc, argv);
    const QTemporaryDir settings;
    RyAppSettings::setSettingsPath(settings.path());
    const int turns = program.number(2, 31);
    double most = 0.0;
    {
        Stage stage;
        if (!stage.open(RY_RESOURCES_DIR "/samples/mannequin.glb"))
            return 1;
        std::printf("%zu bones, %d vertices, %d moves\n", stage.bones(), stage.vertices(), Moves);
        for (const Options &options :
             {Options{"nothing follows the drag", false, false, false}, Options{"what hangs below", true, false, false},
              Options{"the parent's end point", false, true, false}, Options{"orientations", false, false, true},
              Options{"all", true, true, true}}) {
            stage.setOptions(options);
            if (!stage.isRight()) {
                std::printf("%s: the sides are not where they should be\n", options.name);
                return 1;
            }
            most = std::max(most, measure(stage, options, turns));
        }
    }
    ryDestroyScene();
    return program.isShort || most <= MostForBothSides ? 0 : 1;
}
