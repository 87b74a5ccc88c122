// What keeping unsaved work costs whoever edits: the longest time that the event loop stands still for it, beside a
// save of the same scene. A character may be given on the command line; otherwise the sample figure is taken. What was
// kept is brought back first, and its dump compared.
//
// Arguments: [FILE] [--short]
#include "RyBenchmark.h"

#include "rycore/base/RyAppSettings.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/io/snapshot/RySceneSnapshot.h"
#include "rycore/io/snapshot/RySnapshotStore.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/recovery/Autosave.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>

namespace {

void moveJoint(RyScene &scene)
{
    RyBone *bone = scene.getSkeletons().front()->getAllBones().back();
    RyUndoStackHold hold;
    bone->adjustOrigin(bone->getOrigin() + RyVec3(0.25f, 0.5f, 0.25f));
    hold.accept(QStringLiteral("Move"));
}

struct Turn
{
    double wall = 0.0;      ///< milliseconds
    double processor = 0.0; ///< of the thread, whatever else runs on the machine
};

/// The longest turns of the event loop while edits are made and kept.
Turn longestTurn(RyScene &scene, Autosave &autosave, int edits)
{
    Turn longest;
    for (int edit = 0; edit < edits; ++edit) {
        moveJoint(scene);
        do {
            const double processor = RyBenchmark::threadMilliseconds([&longest] {
                const double wall =
                    RyBenchmark::milliseconds([] { QCoreApplication::processEvents(QEventLoop::AllEvents); });
                longest.wall = std::max(longest.wall, wall);
            });
            longest.processor = std::max(longest.processor, processor);
        } while (!autosave.isUpToDate());
    }
    return longest;
}

bool isBroughtBack(const RyScene &scene, const QString &settings)
{
    const QDir folder(settings + QStringLiteral("/autosave"));
    const QStringList sessions = folder.entryList({QStringLiteral("session-*")}, QDir::Dirs);
    RySnapshotParts parts;
    QString error;
    if (sessions.size() != 1 || !RySnapshotStore::read(folder.filePath(sessions.front()), &parts, &error))
        return false;
    const std::optional<RySceneSnapshot> snapshot = RySceneSnapshot::fromParts(parts, &error);
    RyScene again;
    return snapshot && snapshot->restore(again, QString(), &error, nullptr) && rySceneDump(again) == rySceneDump(scene);
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QStringList arguments = QApplication::arguments().mid(1);
    const bool isShort = arguments.removeAll(QStringLiteral("--short")) > 0;
    const QString path = arguments.value(0, QStringLiteral(RY_RESOURCES_DIR "/samples/mannequin.glb"));
    const QTemporaryDir folder;
    RyAppSettings::setSettingsPath(folder.filePath(QStringLiteral("settings")));
    RyScene &scene = *ryScene();
    HostFiles files(&scene, nullptr);
    QString error;
    if (!files.openPath(path) || scene.getSkeletons().empty()) {
        std::printf("%s has no figure\n", qPrintable(path));
        return 2;
    }
    const QString out = folder.filePath(QStringLiteral("out.glb"));
    const int runs = isShort ? 2 : 9;
    const auto save = [&] {
        std::vector<double> times;
        for (int run = 0; run < runs; ++run)
            times.push_back(RyBenchmark::milliseconds([&] { RySceneFile::save(&scene, out, &error); }));
        return RyBenchmark::median(times);
    };
    const double unedited = save();
    moveJoint(scene);
    const double edited = save();
    Autosave autosave(scene, files);
    const Turn longest = longestTurn(scene, autosave, runs);
    if (!isBroughtBack(scene, folder.filePath(QStringLiteral("settings")))) {
        std::printf("what was kept is not the scene\n");
        return 1;
    }
    std::printf(
        "longest turn of the event loop: %.1f ms (%.1f ms of the processor) of %d snapshots; save unedited %.1f "
        "ms, with a moved joint %.1f ms (medians of %d); longest turn / unedited save %.2f\n",
        longest.wall, longest.processor, runs, unedited, edited, runs, longest.wall / unedited);
    return 0;
}
