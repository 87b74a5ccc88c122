// From the start of the program to its first picture, beside a program that shows an empty QGLWidget. Needs a display.
//
// Arguments: how often each is started (9).
#include "RyBenchmark.h"

#include "rycore/app/RyApp.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/window/HostWindow.h"

#include <QApplication>
#include <QGLWidget>
#include <QProcess>

#include <cstdlib>

namespace {

constexpr char painted[] = "painted";

/// Tells the waiting process and ends this one without tidying up.
void tell()
{
    std::puts(painted);
    std::fflush(stdout);
    std::_Exit(0);
}

class EmptyWidget : public QGLWidget
{
public:
    using QGLWidget::QGLWidget;

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QGLWidget::paintEvent(event);
        tell();
    }
};

int showEmptyWidget(QApplication &application)
{
    EmptyWidget widget;
    widget.resize(1280, 900);
    widget.show();
    return application.exec();
}

/// What the program does without arguments.
int showWindow(QApplication &application)
{
    RyApp::setDefaultHomePath(QStringLiteral(RY_RESOURCES_DIR));
    HostWindow window(ryScene());
    window.start();
    window.show();
    window.files()->openSample();
    QObject::connect(window.viewport(), &Ry3DViewport::painted, tell);
    return application.exec();
}

double millisecondsTillPicture(const char *what)
{
    return RyBenchmark::milliseconds([&] {
        QProcess process;
        process.setStandardErrorFile(QProcess::nullDevice());
        process.start(QCoreApplication::applicationFilePath(), {QString::fromLatin1(what)});
        if (!process.waitForFinished(60000) || !process.readAllStandardOutput().contains(painted)) {
            std::printf("%s shows nothing\n", what);
            std::exit(1);
        }
    });
}

} // namespace

int main(int argc, char **argv)
{
    const QByteArray mode = argc > 1 ? argv[1] : "";
    if (mode == "empty" || mode == "window") {
        QApplication application(argc, argv);
        QApplication::setApplicationName(QStringLiteral("bench_start"));
        return mode == "empty" ? showEmptyWidget(application) : showWindow(application);
    }
    const QCoreApplication application(argc, argv);
    const int turns = argc > 1 ? std::atoi(argv[1]) : 9;
    std::vector<double> empty;
    std::vector<double> window;
    for (int turn = -1; turn < turns; ++turn) {
        const double first = millisecondsTillPicture("empty");
        const double second = millisecondsTillPicture("window");
        if (turn < 0) // the first turn warms up
            continue;
        empty.push_back(first);
        window.push_back(second);
    }
    const double ofEmpty = RyBenchmark::median(empty);
    const double ofWindow = RyBenchmark::median(window);
    std::printf("first picture: program %.0f ms, empty widget %.0f ms, ratio %.2f (medians of %d)\n", ofWindow, ofEmpty,
                ofWindow / ofEmpty, turns);
    return 0;
}
