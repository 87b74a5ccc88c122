#include "rycore/app/RyApp.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/viewport/RyGLHeadStart.h"
#include "ryhost/CommandLine.h"
#include "ryhost/batch/BatchDocument.h"
#include "ryhost/batch/BatchRuns.h"
#include "ryhost/batch/ExitCode.h"
#include "ryhost/batch/ToolkitMessages.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/recovery/Autosave.h"
#include "ryhost/recovery/recoverUnsavedWork.h"
#include "ryhost/start/HostTranslations.h"
#include "ryhost/start/HostVersion.h"
#include "ryhost/start/startMemory.h"
#include "ryhost/window/HostWindow.h"

#include <QAccessible>
#include <QApplication>

#include <csignal>
#include <cstdio>
#include <functional>

namespace {

int runWindow(const CommandLine &line)
{
    // Asks for the bus of the session, which starts a process where there is none: soonest done while this one is
    // small.
    QAccessible::isActive();
    RyGLHeadStart::begin();
    // Batch runs find menus, boxes and steps by their texts, and are the same everywhere.
    const HostTranslations translations(RyApp::getHomePath() + QStringLiteral("/translations"), QLocale::system());
    HostWindow window(ryScene());
    window.show();
    Autosave autosave(*ryScene(), *window.files());
    QObject::connect(&autosave, &Autosave::messagePosted, &window, &HostWindow::showMessage);
    if (offerUnsavedWork(*ryScene(), *window.files(), autosave, line.files, &window))
        return QApplication::exec();
    bool opened = false;
    for (const QString &path : line.files)
        opened = (opened ? window.files()->mergePath(path) : window.files()->openPath(path)) || opened;
    if (line.files.isEmpty())
        window.files()->openSample();
    return QApplication::exec();
}

int runApplication(int &argc, char **argv, const std::function<int()> &work)
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("ryhost"));
    const int code = work();
    RyUndoStack::destroyGlobal();
    ryDestroyScene();
    return code;
}

} // namespace

int main(int argc, char **argv)
{
    // A limit on the size of files is a reason to be told like a full disk, not one to end the program.
    std::signal(SIGXFSZ, SIG_IGN);
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const CommandLine line = CommandLine::parse(arguments);
    switch (line.mode) {
    case CommandLine::Help:
        std::fputs(CommandLine::helpText().toLocal8Bit().constData(), stdout);
        return int(ExitCode::Done);
    case CommandLine::Version:
        std::printf("ryhost %s\n", hostVersion().toLocal8Bit().constData());
        return int(ExitCode::Done);
    case CommandLine::Wrong:
        return refuseWrongUse(arguments, line.error);
    case CommandLine::Batch:
        // Nothing is shown, and a machine may have nothing to show it on.
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        if (!line.isVerbose)
            ToolkitMessages::hide();
        return runBatch(line.batchArguments,
                        [&argc, argv](const std::function<int()> &work) { return runApplication(argc, argv, work); });
    case CommandLine::Window:
        prepareStartMemory();
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY") &&
            qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
            std::fputs("ryhost: there is no display to open a window on. ryhost --batch works without one.\n", stderr);
            return int(ExitCode::WrongUse);
        }
        QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
        QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
        break;
    }
    return runApplication(argc, argv, [&line] { return runWindow(line); });
}
