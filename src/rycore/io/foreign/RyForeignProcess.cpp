#include "rycore/io/foreign/RyForeignProcess.h"

#include "rycore/io/foreign/RyForeignProtocol.h"

#include <QFile>
#include <QProcessEnvironment>
#include <QThread>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>

namespace {

constexpr int LongestLine = 1 << 16;
constexpr int MostNotes = 200;
constexpr qint64 OneMebibyte = 1 << 20;
/// What the libraries of the process take of its memory, without what they ask for.
constexpr qint64 RoomForLibraries = 64 * OneMebibyte;
constexpr int WatchEvery = 20; // milliseconds

/// A large file lies in many pages, and each that a process sees for the first time costs it more than what it reads
/// into it. Only the loader of a new program takes this setting.
QProcessEnvironment withLargePages(QProcessEnvironment environment)
{
    const QString name = QStringLiteral("GLIBC_TUNABLES");
    const QString given = environment.value(name);
    environment.insert(name,
                       (given.isEmpty() ? given : given + QLatin1Char(':')) + QStringLiteral("glibc.malloc.hugetlb=1"));
    return environment;
}

} // namespace

RyForeignProcess::~RyForeignProcess()
{
    end();
}

bool RyForeignProcess::start(const QString &program, const QString &in, int out, double unit)
{
    m_parent = int(getpid());
    m_out = out;
    setStandardErrorFile(nullDevice());
    setProcessEnvironment(withLargePages(QProcessEnvironment::systemEnvironment()));
    m_sinceWatched.start();
    QProcess::start(program, {in, QStringLiteral("/proc/self/fd/%1").arg(out), QString::number(unit, 'g', 17)},
                    ReadOnly);
    return waitForStarted();
}

/// Between fork and exec: system calls only.
void RyForeignProcess::setupChildProcess()
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != m_parent)
        _exit(RyForeignProtocol::Refused);
    fcntl(m_out, F_SETFD, 0);
    const rlimit none = {0, 0};
    setrlimit(RLIMIT_CORE, &none);
#if !defined(__SANITIZE_ADDRESS__)
    // The address sanitizer asks for far more than it uses; there the watch over what is used has to do.
    const rlim_t most = rlim_t(m_memory > 2 * RoomForLibraries ? m_memory - RoomForLibraries : m_memory);
    const rlimit data = {most, most};
    setrlimit(RLIMIT_DATA, &data);
#endif
}

void RyForeignProcess::wait(int time)
{
    if (!waitForReadyRead(time) && isRunning() && !bytesAvailable())
        QThread::msleep(1); // it has closed its output: no waiting helps
    takeLines();
    if (!isRunning() || !m_sinceWatched.hasExpired(WatchEvery))
        return;
    m_sinceWatched.start();
    if (residentBytes() > m_memory) {
        m_isOverMemory = true;
        end();
    }
}

void RyForeignProcess::end()
{
    if (!isRunning())
        return;
    kill();
    waitForFinished(-1);
}

void RyForeignProcess::takeLines()
{
    const QByteArray bytes = readAllStandardOutput();
    int from = 0;
    for (int to = bytes.indexOf('\n'); to >= 0; to = bytes.indexOf('\n', from)) {
        m_begun.append(bytes.mid(from, to - from));
        if (!m_isTooLong)
            takeLine(m_begun);
        m_begun.clear();
        m_isTooLong = false;
        from = to + 1;
    }
    m_begun.append(bytes.mid(from));
    if (m_begun.size() > LongestLine) {
        m_isTooLong = true;
        m_begun.clear();
    }
}

void RyForeignProcess::takeLine(const QByteArray &line)
{
    const auto rest = [&line](const char *word) { return QString::fromUtf8(line.mid(int(qstrlen(word)))); };
    if (line.startsWith(RyForeignProtocol::Progress))
        m_progress = qBound(m_progress, rest(RyForeignProtocol::Progress).toDouble(), 1.0);
    else if (line.startsWith(RyForeignProtocol::Note))
        takeNote(rest(RyForeignProtocol::Note));
    else if (line.startsWith(RyForeignProtocol::Refusal))
        m_refusal = rest(RyForeignProtocol::Refusal);
    else if (line == RyForeignProtocol::NoMemory)
        m_isOverMemory = true;
}

void RyForeignProcess::takeNote(const QString &note)
{
    if (m_notes.size() < MostNotes)
        m_notes.append(note);
    else
        ++m_furtherNotes;
}

QStringList RyForeignProcess::notes() const
{
    if (m_furtherNotes == 0)
        return m_notes;
    return m_notes + QStringList(QStringLiteral("And %1 more of such notes").arg(m_furtherNotes));
}

qint64 RyForeignProcess::processorTime() const
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(processId()));
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    // The name of the program, in parentheses, may hold anything; its times are the twelfth and thirteenth behind it.
    const QByteArray text = file.readAll();
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    return (fields.value(11).toLongLong() + fields.value(12).toLongLong()) * 1000 / sysconf(_SC_CLK_TCK);
}

qint64 RyForeignProcess::residentBytes() const
{
    QFile file(QStringLiteral("/proc/%1/statm").arg(processId()));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

bool RyForeignProcess::isDone() const
{
    return !isRunning() && !m_isOverMemory && exitStatus() == NormalExit && exitCode() == RyForeignProtocol::Done;
}

QString RyForeignProcess::reason() const
{
    if (isRunning() || isDone())
        return {};
    if (m_isOverMemory)
        return QStringLiteral("reading it takes more than %1 MB of memory").arg(m_memory / OneMebibyte);
    if (exitStatus() != NormalExit)
        return QStringLiteral("the reader of such files broke down over it, which damaged files can cause");
    if (exitCode() == RyForeignProtocol::Refused && !m_refusal.isEmpty())
        return m_refusal;
    return QStringLiteral("the reader of such files ended without a result (exit code %1)").arg(exitCode());
}
