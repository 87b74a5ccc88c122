#include "rycore/io/foreign/RyForeignImport.h"

#include "rycore/base/RyFileSystem.h"
#include "rycore/io/foreign/RyFileContent.h"
#include "rycore/io/foreign/RyForeignProcess.h"
#include "rycore/io/foreign/RyForeignProtocol.h"
#include "rycore/io/foreign/RyUnnamedFile.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

constexpr int Beat = 20; // milliseconds between two looks at the process

/// The program that reads: what the environment names, else the one beside the library that this is part of.
QString program()
{
    const QString given = qEnvironmentVariable(RyForeignProtocol::ProgramVariable);
    if (!given.isEmpty())
        return given;
    return QStringLiteral("%1/%2").arg(RyFileSystem::ownFolder(), QLatin1String(RyForeignProtocol::Program));
}

/// Why that program cannot be started.
QString explainProgram()
{
    const QString path = program();
    const bool isThere = QFileInfo(path).isFile();
    return QStringLiteral("the program that reads such files, %1, %2; installing the program anew %3")
        .arg(path, isThere ? QStringLiteral("cannot be started") : QStringLiteral("is missing"),
             isThere ? QStringLiteral("may help") : QStringLiteral("brings it back"));
}

/// Why the file need not be given to the reader; empty where it may be read.
QString findObstacle(const QString &path)
{
    if (!QFileInfo(path).isFile())
        return QStringLiteral("this is no file with a beginning and an end");
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("the file cannot be read: %1").arg(file.errorString());
    if (file.size() == 0)
        return QStringLiteral("the file is empty");
    return RyFileContent::findMismatch(QFileInfo(path).suffix().toLower(), file.read(RyFileContent::Needed));
}

/// How long the process has told nothing. The library tells little on the way: while the process computes it may be
/// at work on a large file, and is given longer.
class Silence
{
public:
    explicit Silence(const RyForeignLimits &limits) : m_limits(limits) { m_time.start(); }
    void end(const RyForeignProcess &process)
    {
        m_time.start();
        m_computed = std::max(m_computed, process.processorTime());
    }
    /// The limit that it has passed, in milliseconds; 0 for none.
    int findExpired(const RyForeignProcess &process) const
    {
        if (m_time.hasExpired(m_limits.work))
            return m_limits.work;
        if (!m_time.hasExpired(m_limits.silence))
            return 0;
        const qint64 computed = process.processorTime();
        const bool isAtWork = computed - m_computed > m_time.elapsed() / LeastShare;
        return isAtWork || computed < 0 ? 0 : m_limits.silence;
    }

private:
    static constexpr int LeastShare = 20; // of the time; other programs want the processor too
    const RyForeignLimits m_limits;
    QElapsedTimer m_time;
    qint64 m_computed = 0;
};

/// With a way out.
QString refusal(const QString &path, const QString &reason)
{
    const QString told = QStringLiteral("%1 cannot be opened: %2").arg(path, reason);
    // Some reasons say already what helps.
    if (reason.contains(QLatin1String("glTF")))
        return told;
    return told + (told.endsWith(QLatin1Char('.')) ? QStringLiteral(" ") : QStringLiteral(". ")) +
           QStringLiteral("Exported as glTF 2.0 (.glb) from the program that made it, it can be opened.");
}

} // namespace

QStringList RyForeignImport::endings()
{
    return {QStringLiteral("fbx"), QStringLiteral("dae"), QStringLiteral("bvh")};
}

bool RyForeignImport::read(const QString &path, double unit, const Progress &progress, const Use &use, QString *error,
                           QStringList *notes, const RyForeignLimits &limits)
{
    const auto refuse = [&path, error](const QString &reason) {
        if (error)
            *error = refusal(path, reason);
        return false;
    };
    const QString obstacle = findObstacle(path);
    if (!obstacle.isEmpty())
        return refuse(obstacle);
    const RyUnnamedFile written;
    if (!written.isValid())
        return refuse(QStringLiteral("there is no memory for what is read of it; closing other programs may help"));

    RyForeignProcess process(limits.memory);
    if (!process.start(program(), QFileInfo(path).absoluteFilePath(), written.handle(), unit))
        return refuse(explainProgram());
    Silence silence(limits);
    while (process.isRunning()) {
        const double before = process.progress();
        process.wait(Beat);
        if (process.progress() > before)
            silence.end(process);
        if (progress && !progress(process.progress())) {
            if (error)
                *error = QStringLiteral("%1 was not opened: it was cancelled").arg(path);
            return false;
        }
        const int waited = process.isRunning() ? silence.findExpired(process) : 0;
        if (waited > 0)
            return refuse(
                QStringLiteral("the reader of such files got no further for %1 seconds, which damaged files can cause")
                    .arg(waited / 1000.0));
    }
    if (!process.isDone())
        return refuse(process.reason());
    const QByteArray glb = written.readAll();
    if (glb.isEmpty())
        return refuse(QStringLiteral("the reader of such files ended without a result"));
    if (!use(glb))
        return refuse(QStringLiteral("what was read of it does not fit together"));
    if (notes)
        *notes = process.notes() + *notes;
    return true;
}
