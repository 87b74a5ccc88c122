// From the start of the program to its first picture, beside a program that shows an empty QGLWidget. Needs a display.
//
// Arguments: how often each is started (9).
#include "RyBenchmark.h"

#include "rycore/app/RyApp.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyGLHeadStart.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/start/startMemory.h"
#include "ryhost/window/HostWindow.h"

#include <QAccessible>
#include <QApplication>
#include <QGLWidget>
#include <QProcess>

#include <cstdlib>

#include <sys/resource.h>

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
    QAccessible::isActive();
    RyGLHeadStart::begin();
    RyApp::setDefaultHomePath(QStringLiteral(RY_RESOURCES_DIR));
    HostWindow window(ryScene());
    window.show();
    window.files()->openSample();
    QObject::connect(window.viewport(), &Ry3DViewport::painted, tell);
    return application.exec();
}

/// Of all processes that this one waited for.
double processorMilliseconds()
{
    rusage usage;
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto milliseconds = [](const timeval &time) {
        return double(time.tv_sec) * 1e3 + double(time.tv_usec) * 1e-3;
    };
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

struct Start
{
    double wall = 0;
    double processor = 0;
};

Start startTillPicture(const char *what)
{
    const double before = processorMilliseconds();
    const double wall = RyBenchmark::milliseconds([&] {
        QProcess process;
        process.setStandardErrorFile(QProcess::nullDevice());
        process.start(QCoreApplication::applicationFilePath(), {QString::fromLatin1(what)});
        if (!process.waitForFinished(60000) || !process.readAllStandardOutput().contains(painted)) {
            std::printf("%s shows nothing\n", what);
            std::exit(1);
        }
    });
    return {wall, processorMilliseconds() - before};
}

double medianOf(const std::vector<Start> &starts, double Start::*time)
{
    std::vector<double> times;
    for (const Start &start : starts)
        times.push_back(start.*time);
    return RyBenchmark::median(times);
}

void report(const char *what, const std::vector<Start> &window, const std::vector<Start> &empty, double Start::*time)
{
    const double ofWindow = medianOf(window, time);
    const double ofEmpty = medianOf(empty, time);
    std::printf("first picture, %s: program %.0f ms, empty widget %.0f ms, ratio %.2f (medians of %zu)\n", what,
                ofWindow, ofEmpty, ofWindow / ofEmpty, window.size());
}

} // namespace

int main(int argc, char **argv)
{
    const QByteArray mode = argc > 1 ? argv[1] : "";
    if (mode == "empty" || mode == "window") {
        if (mode == "window")
            prepareStartMemory();
        QApplication application(argc, argv);
        QApplication::setApplicationName(QStringLiteral("bench_start"));
        return mode == "empty" ? showEmptyWidget(application) : showWindow(application);
    }
    const QCoreApplication application(argc, argv);
    const int turns = argc > 1 ? std::atoi(argv[1]) : 9;
    std::vector<Start> empty;
    std::vector<Start> window;
    for (int turn = -1; turn < turns; ++turn) {
        const Start first = startTillPicture("empty");
        const Start second = startTillPicture("window");
        if (turn < 0) // the first turn warms up
            continue;
        empty.push_back(first);
        window.push_back(second);
    }
    report("wall clock", window, empty, &Start::wall);
    report("processor's time", window, empty, &Start::processor);
    return 0;
}
