// How the time of what touches the whole scene list grows: selecting, adding and removing nodes, in a window with the
// scene list, the parameters and the joint tool, whose scene is a figure with chains of ten bones on a long spine; and
// that of links between many values.
#include "RyChainFigure.h"
#include "RyGrowth.h"

#include "rycore/app/RyMainWindow.h"
#include "rycore/automation/RyActionRunner.h"
#include "rycore/automation/RyDialogDriver.h"
#include "rycore/base/RyERCLink.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/restore/RyRestorePoints.h"
#include "rycore/viewport/RyViewportMgr.h"
#include "ryhost/panes/ParametersPane.h"
#include "ryhost/panes/SceneModel.h"
#include "ryhost/panes/ScenePane.h"

#include <QApplication>
#include <QDockWidget>
#include <QTreeView>

namespace {

constexpr int Nodes = 16000;
constexpr int EditedBones = 4000;
constexpr int Vertices = 1000;
constexpr int LinkedLayers = 1000;

class Stage
{
public:
    Stage() : m_window(ryScene()), m_pane(new ScenePane(ryScene())), m_parameters(new ParametersPane(ryScene()))
    {
        for (QWidget *pane : {static_cast<QWidget *>(m_pane), static_cast<QWidget *>(m_parameters)}) {
            auto *dock = new QDockWidget(&m_window);
            dock->setWidget(pane);
            m_window.addDockWidget(Qt::LeftDockWidgetArea, dock);
        }
        m_window.loadPlugins(QStringLiteral(RY_PLUGIN_FOLDER));
        RyViewportMgr *viewports = m_window.getViewportMgr();
        viewports->setActiveTool(viewports->findTool(QStringLiteral("RyJointEditorTool")));
        ryRestorePoints()->setMost(1);
        m_window.resize(800, 900);
        m_window.show();
        settle();
    }

    /// Everything that waits for its turn, pictures of the panes included.
    static void settle()
    {
        for (int i = 0; i < 3; ++i) {
            QCoreApplication::sendPostedEvents();
            QCoreApplication::processEvents();
        }
    }

    void clear()
    {
        ryScene()->clear();
        ryUndoStack()->clearAll();
        settle();
    }

    RyFigure *makeFigure(int bones)
    {
        clear();
        RyFigure *figure = makeChainFigure(ryScene(), Vertices, bones);
        settle();
        return figure;
    }

    /// One node below another, as deep as there are bones.
    RyFigure *makeDeepFigure(int bones)
    {
        clear();
        auto *figure = new RyFigure;
        RyNode *above = figure;
        for (int i = 0; i < bones; ++i) {
            auto *bone = new RyBone;
            bone->setName(QStringLiteral("deep%1").arg(i));
            above->addNodeChild(bone);
            above = bone;
        }
        ryScene()->addNode(figure);
        settle();
        return figure;
    }

    bool listShowsSelection() const
    {
        int rows = 0;
        for (const QItemSelectionRange &range : m_pane->tree()->selectionModel()->selection())
            rows += range.height();
        return rows == ryScene()->getNumSelectedNodes();
    }

    bool listShowsScene() const
    {
        const QAbstractItemModel *model = m_pane->tree()->model();
        const std::vector<RyNode *> &nodes = ryScene()->getNodes();
        return std::all_of(nodes.begin(), nodes.end(),
                           [this](RyNode *node) { return m_pane->model()->indexOf(node).isValid(); }) &&
               model->rowCount() == int(ryScene()->getTopLevelNodes().size());
    }

    double selectAll(const RyFigure *, int nodes)
    {
        const double time = timeOf([] { ryScene()->selectAllNodes(true); });
        return ryScene()->getNumSelectedNodes() == nodes && listShowsSelection() ? time : -1.0;
    }

    double selectNone(const RyFigure *, int)
    {
        ryScene()->selectAllNodes(true);
        settle();
        const double time = timeOf([] { ryScene()->selectAllNodes(false); });
        return ryScene()->getNumSelectedNodes() == 0 && listShowsSelection() ? time : -1.0;
    }

    /// From all to all but every third.
    double selectOthers(const RyFigure *figure, int)
    {
        ryScene()->selectAllNodes(true);
        settle();
        std::vector<RyNode *> nodes;
        figure->getNodeChildren(nodes, true);
        for (size_t i = nodes.size(); i-- > 0;) {
            if (i % 3 == 1)
                nodes.erase(nodes.begin() + std::ptrdiff_t(i));
        }
        const double time = timeOf([&] { ryScene()->setSelection(nodes); });
        return ryScene()->getNumSelectedNodes() == int(nodes.size()) && listShowsSelection() ? time : -1.0;
    }

    double selectChildren(const RyFigure *figure, int)
    {
        std::vector<RyNode *> nodes;
        const double time = timeOf([&] {
            figure->getNodeChildren(nodes, true);
            ryScene()->setSelection(nodes);
        });
        return ryScene()->getNumSelectedNodes() == int(nodes.size()) && listShowsSelection() ? time : -1.0;
    }

    double selectInList(const RyFigure *, int)
    {
        const double time = timeOf([&] { m_pane->tree()->selectAll(); });
        return ryScene()->getNumSelectedNodes() == int(ryScene()->getNodes().size()) ? time : -1.0;
    }

    double addBone(const RyFigure *figure, int bones)
    {
        RyBone *parent = figure->getAllBones()[size_t(bones / 2)];
        ryScene()->setSelection({parent});
        settle();
        RyDialogDriver driver;
        driver.setField(QStringLiteral("JointEditorCreateBoneNameLEdit"), QStringLiteral("fresh"));
        driver.setField(QStringLiteral("JointEditorCreateBoneLabelLEdit"), QStringLiteral("fresh"));
        const RyActionRunner runner(m_window.getActionMgr());
        RyActionResult result;
        const double time = timeOf([&] { result = runner.run(QStringLiteral("RyJECreateBoneAction"), driver); });
        return ryHasRun(result.outcome) && int(figure->getAllBones().size()) == bones + 1 && listShowsScene() ? time
                                                                                                              : -1.0;
    }

    double removeFigure(RyFigure *figure, int)
    {
        const double time = timeOf([&] {
            RyUndoStackHold hold;
            ryScene()->removeNode(figure);
            hold.accept(QStringLiteral("Remove"));
        });
        return ryScene()->getNodes().empty() && listShowsScene() ? time : -1.0;
    }

    double bringBack(RyFigure *figure, int nodes)
    {
        ryScene()->selectAllNodes(true);
        removeFigure(figure, nodes);
        const double time = timeOf([&] { ryUndoStack()->undo(); });
        return int(ryScene()->getNodes().size()) == nodes && listShowsScene() ? time : -1.0;
    }

    double clearScene(const RyFigure *, int)
    {
        const double time = timeOf([this] { clear(); });
        return ryScene()->getNodes().empty() && listShowsScene() ? time : -1.0;
    }

private:
    static double timeOf(const std::function<void()> &work)
    {
        return RyBenchmark::threadMilliseconds([&] {
            work();
            settle();
        });
    }

    RyMainWindow m_window;
    ScenePane *m_pane;
    ParametersPane *m_parameters;
};

/// Values in layers of two, each of which both of the layer before control.
class LinkLayers
{
public:
    explicit LinkLayers(int layers)
    {
        for (int i = 0; i < 2 * layers; ++i)
            m_values.push_back(std::make_unique<RyFloatProperty>(nullptr, QString()));
        for (const auto &value : m_values) {
            QObject::connect(value.get(), &RyFloatProperty::currentValueChanged, value.get(),
                             [this] { ++m_announcements; });
        }
    }

    /// From the last layer up, or from the first one down.
    bool link(bool upwards)
    {
        const size_t count = m_values.size() / 2;
        bool good = true;
        for (size_t i = 1; i < count; ++i) {
            const size_t layer = upwards ? count - i : i;
            for (const size_t controller : {2 * layer - 2, 2 * layer - 1}) {
                for (const size_t controlled : {2 * layer, 2 * layer + 1})
                    good &= RyERCLink::create(m_values[controller].get(), m_values[controlled].get()) != nullptr;
            }
        }
        return good;
    }

    /// There and back. Whether each value below said so twice.
    bool pose()
    {
        m_announcements = 0;
        m_values.front()->setValue(1.0f);
        m_values.front()->setValue(0.0f);
        return m_announcements == 2 * (m_values.size() - 1) && m_values.back()->getValue() == 0.0f;
    }

    bool refusesCircle() { return !RyERCLink::create(m_values.back().get(), m_values.front().get()); }

private:
    std::vector<std::unique_ptr<RyFloatProperty>> m_values;
    size_t m_announcements = 0;
};

double linkLayers(int layers)
{
    LinkLayers down(layers), up(layers);
    bool right = true;
    const double time = RyBenchmark::threadMilliseconds([&] { right = down.link(false) && up.link(true); });
    return right ? time : -1.0;
}

double poseLayers(int layers)
{
    LinkLayers values(layers);
    bool right = values.link(false);
    const double time = RyBenchmark::threadMilliseconds([&] {
        for (int i = 0; i < 10; ++i)
            right &= values.pose();
    });
    return right ? time : -1.0;
}

double refuseCircles(int layers)
{
    LinkLayers values(layers);
    bool right = values.link(false);
    const double time = RyBenchmark::threadMilliseconds([&] {
        for (int i = 0; i < 10; ++i)
            right &= values.refusesCircle();
    });
    return right ? time : -1.0;
}

/// The bindings of all bones, one after the other.
double findBindings(int bones)
{
    RyScene scene;
    const RyFigure *figure = makeChainFigure(&scene, Vertices, bones);
    const RySkinBinding *skin = figure->getSkinBinding();
    const std::vector<RyBone *> all = figure->getAllBones();
    bool right = true;
    const double time = RyBenchmark::threadMilliseconds([&] {
        for (const RyBone *bone : all) {
            const RyBoneBinding *binding = skin->findBoneBinding(bone);
            right &= binding && binding->getBone() == bone;
        }
    });
    return right ? time : -1.0;
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    RyGrowth growth(argc, argv);
    growth.measure("find the bindings of all bones", Nodes, findBindings);
    growth.measure("link layers of values", LinkedLayers, linkLayers);
    growth.measure("pose the top of layers of links", LinkedLayers, poseLayers);
    growth.measure("refuse a circle through layers of links", 2 * LinkedLayers, refuseCircles);
    {
        Stage stage;
        const auto figure = [&stage](auto work) {
            return [&stage, work](int nodes) { return (stage.*work)(stage.makeFigure(nodes - 1), nodes); };
        };
        const auto deep = [&stage](auto work) {
            return [&stage, work](int nodes) { return (stage.*work)(stage.makeDeepFigure(nodes - 1), nodes); };
        };
        growth.measure("select all", Nodes, figure(&Stage::selectAll));
        growth.measure("select all, deep", Nodes, deep(&Stage::selectAll));
        growth.measure("select all in the list", Nodes, figure(&Stage::selectInList));
        growth.measure("select all in the list, deep", Nodes, deep(&Stage::selectInList));
        growth.measure("select none", Nodes, figure(&Stage::selectNone));
        growth.measure("select others", Nodes, figure(&Stage::selectOthers));
        growth.measure("select children", Nodes, figure(&Stage::selectChildren));
        growth.measure("remove a figure", Nodes, figure(&Stage::removeFigure));
        growth.measure("bring a figure back", Nodes, figure(&Stage::bringBack));
        growth.measure("clear the scene", Nodes, figure(&Stage::clearScene));
        growth.measure("add a bone", EditedBones,
                       [&stage](int bones) { return stage.addBone(stage.makeFigure(bones), bones); });
        stage.clear();
    }
    ryDestroyScene();
    return growth.exitCode();
}
