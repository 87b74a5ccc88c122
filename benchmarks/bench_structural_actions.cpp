// How the time of the actions that change which bones there are grows with vertices and with bones. Each action runs as
// a person would run it: in a window with the built plug-in, with its dialogs answered and its restore point taken.
// Twice the size may take twice the time: the exponent of the growth is printed, and more than 1.2 fails.
//
// Arguments: files of characters to run the same actions on.
#include "RyBenchmark.h"
#include "RyChainFigure.h"

#include "rycore/app/RyMainWindow.h"
#include "rycore/automation/RyActionRunner.h"
#include "rycore/automation/RyDialogDriver.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/undo/restore/RyRestorePoints.h"
#include "rycore/viewport/RyViewportMgr.h"

#include <QApplication>

#include <cmath>
#include <string>

namespace {

constexpr int Runs = 9;
constexpr int PickedNodes = 40;     // how far down the bone that is worked on stands
constexpr double NoiseFloor = 0.02; // milliseconds: below, growth cannot be told

struct Case
{
    const char *name;
    const char *action;
};

constexpr Case cases[] = {{"create child", "RyJECreateBoneAction"}, {"create sibling", "RyJECreateSiblingBoneAction"},
                          {"split", "RyJESplitBoneAction"},         {"duplicate", "RyJEDuplicateBonesAction"},
                          {"delete", "RyJEDeleteBoneAction"},       {"delete unused", "RyJEDeleteUnusedBonesAction"},
                          {"reparent", "RyJEReparentBoneAction"}};

/// The application's scene in a window whose joint tool is active.
struct Stage
{
    Stage() : window(ryScene())
    {
        window.loadPlugins(QStringLiteral(RY_PLUGIN_FOLDER));
        RyViewportMgr *viewports = window.getViewportMgr();
        viewports->setActiveTool(viewports->findTool(QStringLiteral("RyJointEditorTool")));
        ryRestorePoints()->setMost(1);
    }

    std::vector<RyBone *> bones() const { return ryScene()->getSkeletons().front()->getAllBones(); }

    /// Milliseconds of one run, which is taken back afterwards; negative when it was refused.
    double run(const Case &each)
    {
        const std::vector<RyBone *> all = bones();
        RyBone *bone = all[std::min(size_t(PickedNodes), all.size() - 1)];
        ryScene()->setSelection({bone});
        QCoreApplication::sendPostedEvents();
        const RyActionRunner runner(window.getActionMgr());
        RyDialogDriver driver;
        const std::string action = each.action;
        if (action == "RyJECreateBoneAction") {
            driver.setField(QStringLiteral("JointEditorCreateBoneNameLEdit"), QStringLiteral("fresh"));
            driver.setField(QStringLiteral("JointEditorCreateBoneLabelLEdit"), QStringLiteral("fresh"));
        } else if (action == "RyJEReparentBoneAction") {
            driver.setField(QStringLiteral("NodeDlgTree"), all.front()->getName());
            driver.setAnswer(QStringLiteral("Reparenting Warning"), QStringLiteral("Ok"));
        } else if (action == "RyJEDeleteUnusedBonesAction") {
            driver.setAnswer(QStringLiteral("Remove Unused Bones"), QStringLiteral("Yes"));
        }
        RyActionResult result;
        const double time =
            RyBenchmark::milliseconds([&] { result = runner.run(QString::fromLatin1(each.action), driver); });
        if (!ryHasRun(result.outcome)) {
            std::printf("%s was refused: %s\n", each.name, qPrintable(result.reason));
            return -1.0;
        }
        ryRestorePoints()->restore(0);
        ryRestorePoints()->clear();
        return time;
    }

    double median(const Case &each)
    {
        std::vector<double> times;
        for (int i = 0; i < Runs; ++i)
            times.push_back(run(each));
        return times.front() < 0 ? -1.0 : RyBenchmark::median(times);
    }

    RyMainWindow window;
};

/// The slope of log time over log size, by least squares.
double exponent(const std::vector<double> &sizes, const std::vector<double> &times)
{
    double x = 0, y = 0, xx = 0, xy = 0;
    const auto n = double(sizes.size());
    for (size_t i = 0; i < sizes.size(); ++i) {
        const double a = std::log(sizes[i]);
        const double b = std::log(std::max(times[i], NoiseFloor));
        x += a;
        y += b;
        xx += a * a;
        xy += a * b;
    }
    return (n * xy - x * y) / (n * xx - x * x);
}

bool grow(Stage &stage, const char *what, const std::vector<std::pair<int, int>> &sizes, bool byBones)
{
    std::printf("\ntime in milliseconds by number of %s (medians of %d)\n%-16s", what, Runs, "");
    std::vector<double> along;
    for (const auto &[vertices, bones] : sizes) {
        along.push_back(byBones ? bones : vertices);
        std::printf("%10d", byBones ? bones : vertices);
    }
    std::printf("  exponent\n");
    std::vector<std::vector<double>> times(std::size(cases));
    for (const auto &[vertices, bones] : sizes) {
        ryScene()->clear();
        ryUndoStack()->clearAll();
        makeChainFigure(ryScene(), vertices, bones);
        for (size_t i = 0; i < std::size(cases); ++i)
            times[i].push_back(stage.median(cases[i]));
    }
    bool straight = true;
    for (size_t i = 0; i < std::size(cases); ++i) {
        std::printf("%-16s", cases[i].name);
        for (const double time : times[i])
            std::printf("%10.3f", time);
        const double growth = exponent(along, times[i]);
        const bool good = growth < 1.2 && *std::min_element(times[i].begin(), times[i].end()) >= 0;
        std::printf("%10.2f%s\n", growth, good ? "" : "  too steep");
        straight &= good;
    }
    return straight;
}

bool runOnFile(Stage &stage, const QString &path)
{
    QString error;
    if (!RySceneFile::open(ryScene(), path, &error)) {
        std::printf("%s\n", qPrintable(error));
        return false;
    }
    const RySkinBinding *skin = RySkinBinding::findSkin(ryScene()->getSkeletons().front());
    const int vertices = skin && skin->getNumBoneBindings() > 0 && skin->bindings().front()->getWeights()
                             ? skin->bindings().front()->getWeights()->getNumWeights()
                             : 0;
    std::printf("\n%s: %d vertices, %d bones\n", qPrintable(path), vertices, int(stage.bones().size()));
    for (const Case &each : cases)
        std::printf("%-16s%10.3f ms\n", each.name, stage.median(each));
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    bool good = true;
    {
        Stage stage;
        good &= grow(stage, "vertices, 163 bones", {{26750, 163}, {53500, 163}, {107000, 163}, {214000, 163}}, false);
        good &= grow(stage, "bones, 53,500 vertices", {{53500, 80}, {53500, 160}, {53500, 320}, {53500, 640}}, true);
        for (int i = 1; i < argc; ++i)
            good &= runOnFile(stage, QString::fromLocal8Bit(argv[i]));
    }
    ryDestroyScene();
    return good ? 0 : 1;
}
