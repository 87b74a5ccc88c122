#include "ryforeign/RyForeignChild.h"

#include "rycore/io/foreign/RyForeignProtocol.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <malloc.h>
#include <unistd.h>

#include <climits>
#include <clocale>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

constexpr double LeastStep = 0.001; // of the progress that is worth a line

int channel = STDOUT_FILENO;

void sendBytes(const char *bytes, size_t size)
{
    while (size > 0) {
        const ssize_t sent = ::write(channel, bytes, size);
        if (sent <= 0)
            std::_Exit(RyForeignProtocol::Refused); // nobody listens any more
        bytes += sent;
        size -= size_t(sent);
    }
}

void send(const char *word, QString text)
{
    text.replace(QLatin1Char('\n'), QLatin1Char(' ')).remove(QLatin1Char('\r'));
    const QByteArray line = word + text.toUtf8() + '\n';
    sendBytes(line.constData(), size_t(line.size()));
}

/// Where memory ends nothing may be asked for any more, and libraries that go on without it only crash elsewhere.
[[noreturn]] void endWithoutMemory()
{
    sendBytes(RyForeignProtocol::NoMemory, std::strlen(RyForeignProtocol::NoMemory));
    sendBytes("\n", 1);
    std::_Exit(RyForeignProtocol::OutOfMemory);
}

[[noreturn]] void refuse(const QString &reason)
{
    send(RyForeignProtocol::Refusal, reason);
    std::_Exit(RyForeignProtocol::Refused);
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    // What a buffer holds is written when the file is closed, and nobody would hear that there was no room for it.
    if (file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && file.write(bytes) == bytes.size())
        return;
    const QString reason = file.errorString();
    if (QFileInfo(path).isFile() && !QFileInfo(path).isSymLink()) // and no device of the system
        file.remove();                                            // no half of it
    refuse(QStringLiteral("what was read of it could not be written: %1").arg(reason));
}

/// To the one who asked.
[[noreturn]] void deliver(const QString &path, const RyForeignResult &result)
{
    write(path, result.glb);
    for (const QString &note : result.notes)
        send(RyForeignProtocol::Note, note);
    std::_Exit(RyForeignProtocol::Done);
}

/// What is given back is soon asked for again, and the process is short of life: the system would take pages only to
/// clear and hand them out anew.
void keepFreedMemory()
{
    mallopt(M_MMAP_THRESHOLD, 32 << 20); // the largest that there is
    mallopt(M_TRIM_THRESHOLD, INT_MAX);
}

} // namespace

void RyForeignChild::run(int argc, char **argv, RyForeignReadFunction read)
{
    // A limit on the size of files is a reason to be told like a full disk, not one to end the program.
    std::signal(SIGXFSZ, SIG_IGN);
    // Libraries print what they like; the lines are for who asked.
    channel = ::dup(STDOUT_FILENO);
    ::dup2(STDERR_FILENO, STDOUT_FILENO);
    std::set_new_handler(endWithoutMemory);
    keepFreedMemory();
    const QCoreApplication application(argc, argv); // takes the user's locale, for names of files
    // Numbers of files have a point, and a library may read and write them as the locale has it.
    std::setlocale(LC_NUMERIC, "C");
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4)
        std::_Exit(RyForeignProtocol::WrongUse);
    const QString out = arguments.at(2);
    double told = 0.0;
    RyForeignRequest request;
    request.path = arguments.at(1);
    request.unit = arguments.at(3).toDouble();
    request.progress = [&told](double done) {
        if (std::isfinite(done) && done >= told + LeastStep) {
            told = done;
            send(RyForeignProtocol::Progress, QString::number(done, 'f', 4));
        }
        return true; // who has lost interest ends this process
    };
    request.finished = [&out](const RyForeignResult &result) { deliver(out, result); };
    RyForeignResult result;
    try {
        if (!read(request, result))
            refuse(result.error);
    } catch (const std::bad_alloc &) {
        endWithoutMemory();
    } catch (const std::exception &failure) {
        refuse(QStringLiteral("the library that reads such files gave up: %1").arg(QString::fromUtf8(failure.what())));
    }
    deliver(out, result);
}
