#include "ryforeign/RyForeignChild.h"

#include <QElapsedTimer>
#include <QFile>
#include <QThread>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <vector>

/// A reader that does what the first line of its file says, of all that a real one may do over a damaged file.
namespace {

[[noreturn]] void sleepForever()
{
    for (;;)
        QThread::msleep(1000);
}

bool take(const QString &path, RyForeignResult &result)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        result.error = QStringLiteral("there is no %1").arg(path);
        return false;
    }
    result.glb = file.readAll();
    return true;
}

void compute(int time)
{
    QElapsedTimer timer;
    timer.start();
    for (volatile unsigned turns = 0; time == 0 || !timer.hasExpired(time);)
        turns = turns + 1;
}

void eat()
{
    constexpr size_t Bite = size_t(16) << 20;
    std::vector<std::unique_ptr<char[]>> eaten;
    for (;;) {
        eaten.emplace_back(new char[Bite]);
        std::memset(eaten.back().get(), int(eaten.size()), Bite);
    }
}

bool read(const RyForeignRequest &request, RyForeignResult &result)
{
    QFile file(request.path);
    if (!file.open(QIODevice::ReadOnly)) {
        result.error = QStringLiteral("the file is not there any more");
        return false;
    }
    const QString line = QString::fromUtf8(file.readLine()).trimmed();
    const QString word = line.section(QLatin1Char(' '), 0, 0);
    const QString rest = line.section(QLatin1Char(' '), 1);
    if (word == QLatin1String("crash")) {
        std::signal(SIGSEGV, SIG_DFL); // whatever a sanitizer makes of it
        std::raise(SIGSEGV);
    }
    if (word == QLatin1String("abort"))
        std::abort();
    if (word == QLatin1String("hang"))
        sleepForever();
    if (word == QLatin1String("stall")) { // says the same again and again
        request.progress(0.5);
        for (;;) {
            request.progress(0.5);
            QThread::msleep(10);
        }
    }
    if (word == QLatin1String("compute")) { // without a word, for so many milliseconds; 0 for ever
        compute(rest.section(QLatin1Char(' '), 0, 0).toInt());
        return take(rest.section(QLatin1Char(' '), 1), result);
    }
    if (word == QLatin1String("eat"))
        eat();
    if (word == QLatin1String("exit"))
        std::_Exit(rest.toInt());
    if (word == QLatin1String("throw"))
        throw std::runtime_error("an index is out of range");
    if (word == QLatin1String("refuse")) {
        result.error = rest;
        return false;
    }
    if (word == QLatin1String("rubbish"))
        result.glb = "rubbish";
    if (word == QLatin1String("slow")) { // ten seconds in small steps
        for (int i = 0; i < 500; ++i) {
            QThread::msleep(20);
            request.progress(i / 500.0);
        }
    }
    if (word == QLatin1String("print")) {
        std::printf("progress 1\nerror printed by the library\nmemory\n");
        std::fflush(stdout);
        return take(rest, result);
    }
    if (word == QLatin1String("steps")) {
        for (int i = 0; i <= 4; ++i) {
            request.progress(i / 4.0);
            QThread::msleep(60);
        }
        return take(rest, result);
    }
    if (word == QLatin1String("talk")) {
        for (int i = 0; i < 100000; ++i)
            result.notes.append(QStringLiteral("note %1\nin two lines").arg(i));
        return take(rest, result);
    }
    if (word == QLatin1String("locale")) { // a number as the locale has it
        char number[8];
        std::snprintf(number, sizeof number, "%.1f", 1.5);
        result.notes.append(QString::fromLatin1(number));
        return take(rest, result);
    }
    if (word == QLatin1String("unit")) {
        result.notes.append(QStringLiteral("unit %1").arg(request.unit, 0, 'g', 12));
        return take(rest, result);
    }
    if (word == QLatin1String("take")) {
        result.notes.append(QStringLiteral("Two lights did not come along."));
        return take(rest, result);
    }
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    RyForeignChild::run(argc, argv, read);
}
