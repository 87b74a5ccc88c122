#include "rycore/io/foreign/RyForeignImport.h"

#include "rycore/io/foreign/RyFileContent.h"
#include "rycore/io/foreign/RyForeignProcess.h"
#include "rycore/io/foreign/RyUnnamedFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>

namespace {

constexpr int Beat = 20; // milliseconds between two looks at the process

QString programPath;
RyForeignImport::Limits limitsNow;

QString program()
{
    return programPath.isEmpty() ? QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("ryhost"))
                                 : programPath;
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
    Silence() { m_time.start(); }
    void end(const RyForeignProcess &process)
    {
        m_time.start();
        m_computed = process.processorTime();
    }
    /// The limit that it has passed, in milliseconds; 0 for none.
    int findExpired(const RyForeignProcess &process) const
    {
        if (m_time.hasExpired(limitsNow.work))
            return limitsNow.work;
        if (!m_time.hasExpired(limitsNow.silence))
            return 0;
        const bool isAtWork = process.processorTime() - m_computed > m_time.elapsed() / LeastShare;
        return isAtWork ? 0 : limitsNow.silence;
    }

private:
    static constexpr int LeastShare = 20; // of the time; other programs want the processor too
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

void RyForeignImport::setProgram(const QString &path)
{
    programPath = path;
}

void RyForeignImport::setLimits(const Limits &limits)
{
    limitsNow = limits;
}

bool RyForeignImport::read(const QString &path, double unit, const Progress &progress, const Use &use, QString *error,
                           QStringList *notes)
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

    RyForeignProcess process(limitsNow.memory);
    if (!process.start(program(), QFileInfo(path).absoluteFilePath(), written.handle(), unit))
        return refuse(QStringLiteral("the program that reads such files, %1, cannot be started").arg(program()));
    Silence silence;
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
