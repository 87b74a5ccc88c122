#include "demo_session/DemoSession.h"
#include "rycore/app/RyApp.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "ryhost/window/HostWindow.h"

#include <QApplication>

#include <cstdio>

namespace {

int playSession(const QString &folder, const QString &foreign)
{
    HostWindow window(ryScene());
    window.show();
    return DemoSession(window, folder, foreign).run();
}

} // namespace

/// demo_session FOLDER [FBX]: plays sessions in the window of the program and leaves pictures in a folder.
int main(int argc, char **argv)
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    if (argc != 2 && argc != 3) {
        std::fputs("Usage: demo_session FOLDER [FBX]\n", stderr);
        return 2;
    }
    QApplication::setApplicationName(QStringLiteral("ryhost"));
    RyApp::setDefaultHomePath(QStringLiteral(RY_RESOURCES_DIR));
    const int code = playSession(QApplication::arguments().at(1), QApplication::arguments().value(2));
    RyUndoStack::destroyGlobal();
    ryDestroyScene();
    return code;
}
