#include "RyForeignOpening.h"

#include "RyBenchmark.h"

#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyScene.h"

#include <QCoreApplication>
#include <QProcess>

#include <sys/resource.h>

#include <array>
#include <cstdlib>
#include <cstring>

namespace {

constexpr char Ours[] = "--open";
constexpr char Peer[] = "--peer";

/// Of all threads, and of processes that have ended; in milliseconds.
double processorTime()
{
    double time = 0.0;
    for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage usage;
        getrusage(who, &usage);
        for (const timeval &part : {usage.ru_utime, usage.ru_stime})
            time += 1e3 * double(part.tv_sec) + 1e-3 * double(part.tv_usec);
    }
    return time;
}

bool openScene(const QString &path)
{
    QString error;
    const bool done = RySceneFile::open(ryScene(), path, &error); // which goes with the process
    if (!done)
        std::fprintf(stderr, "%s\n", qPrintable(error));
    return done;
}

bool readAlone(const QString &path)
{
    QProcess process;
    process.start(QStringLiteral(RY_FOREIGN_PEER), {path}, QIODevice::ReadOnly);
    return process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

/// Wall clock and processor's time of one run in a process of its own; false when it fails.
bool timeWay(const char *way, const QString &path, std::array<std::vector<double>, 2> &times)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationFilePath(), {QString::fromLatin1(way), path}, QIODevice::ReadOnly);
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        return false;
    const QList<QByteArray> said = process.readAllStandardOutput().simplified().split(' ');
    for (int i = 0; i < 2; ++i)
        times[size_t(i)].push_back(said.value(i).toDouble());
    return said.size() == 2;
}

} // namespace

bool RyForeignOpening::isWay(const char *argument)
{
    return std::strcmp(argument, Ours) == 0 || std::strcmp(argument, Peer) == 0;
}

int RyForeignOpening::runWay(const char *way, const QString &path)
{
    const bool isOurs = std::strcmp(way, Ours) == 0;
    if (!openScene(QStringLiteral(RY_RESOURCES_DIR "/samples/mannequin.glb")))
        return 1;
    bool done = false;
    const double before = processorTime();
    const double wall = RyBenchmark::milliseconds([&] { done = isOurs ? openScene(path) : readAlone(path); });
    std::printf("%.4f %.4f\n", wall, processorTime() - before);
    std::fflush(stdout);
    std::_Exit(done ? 0 : 1);
}

bool RyForeignOpening::compare(const QString &path, int turns)
{
    std::array<std::vector<double>, 2> ours, peer;
    for (int turn = -1; turn < turns; ++turn) {
        if (turn == 0) { // the first turn warms up
            ours = {};
            peer = {};
        }
        if (!timeWay(Peer, path, peer) || !timeWay(Ours, path, ours)) {
            std::printf("%s cannot be opened\n", qPrintable(path));
            return false;
        }
    }
    const char *names[] = {"wall", "cpu"};
    std::printf("  opened as a whole, of a process of its own that reads with the importers' library alone:\n");
    for (size_t i = 0; i < 2; ++i) {
        const double a = RyBenchmark::median(ours[i]), b = RyBenchmark::median(peer[i]);
        std::printf("    %-5s %9.3f ms of %9.3f ms: %6.3f\n", names[i], a, b, a / b);
    }
    return true;
}
