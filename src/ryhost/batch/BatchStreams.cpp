#include "ryhost/batch/BatchStreams.h"

#include "rycore/base/RyFileSystem.h"
#include "rycore/base/RyTemporaryFolder.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/io/foreign/RyFileContent.h"
#include "ryhost/batch/BatchArguments.h"
#include "ryhost/batch/streamOutsideFile.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr ssize_t LargestInput = 2000000000; // one array holds it
const QString InputName = QStringLiteral("stdin");
const QString OutputName = QStringLiteral("stdout");
const QString FileInput = QStringLiteral("a file");
const QString ScriptInput = QStringLiteral("a script");

bool usesFiles(const BatchArguments &arguments)
{
    const auto streams = [](const BatchStep &step) {
        return step.readsStandardInput() || (step.verb == BatchStep::Save && step.writesStandardOutput());
    };
    return arguments.files.contains(QStringLiteral("-")) ||
           std::any_of(arguments.steps.begin(), arguments.steps.end(), streams);
}

bool usesOutput(const BatchArguments &arguments)
{
    const auto writes = [](const BatchStep &step) { return step.writesStandardOutput(); };
    return arguments.asJson || std::any_of(arguments.steps.begin(), arguments.steps.end(), writes);
}

/// False with the reason in errno.
bool readAll(QByteArray *bytes)
{
    char block[1 << 16];
    for (;;) {
        const ssize_t count = ::read(STDIN_FILENO, block, sizeof block);
        if (count == 0)
            return true;
        if (count > 0 && bytes->size() > LargestInput - count) {
            errno = EFBIG;
            return false;
        }
        if (count > 0)
            bytes->append(block, int(count));
        else if (errno != EINTR)
            return false;
    }
}

/// Why there are none; empty when there are.
QString readInputBytes(QByteArray *bytes, const QString &what)
{
    if (::isatty(STDIN_FILENO))
        return QStringLiteral("standard input is a terminal; send %1 into the program by < or |").arg(what);
    if (!readAll(bytes))
        return QStringLiteral("standard input could not be read: %1").arg(RyFileSystem::lastReason());
    if (bytes->isEmpty())
        return QStringLiteral("standard input is empty; what was to send %1 sent nothing").arg(what);
    return {};
}

} // namespace

BatchStreams::BatchStreams(const BatchArguments &arguments)
{
    if (usesFiles(arguments))
        m_folder = std::make_unique<RyTemporaryFolder>(QStringLiteral("ryhost-stream"));
    if (usesOutput(arguments)) {
        // A reader that has gone is an error to be told of, not the end of the program.
        std::signal(SIGPIPE, SIG_IGN);
        std::fflush(stdout);
        m_output = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
        ::dup2(STDERR_FILENO, STDOUT_FILENO);
    }
}

BatchStreams::~BatchStreams()
{
    if (m_output < 0)
        return;
    std::fflush(stdout);
    ::dup2(m_output, STDOUT_FILENO);
    ::close(m_output);
}

bool BatchStreams::write(const QByteArray &bytes, QString *error)
{
    for (int done = 0; done < bytes.size();) {
        const ssize_t count = ::write(m_output, bytes.constData() + done, size_t(bytes.size() - done));
        if (count < 0 && errno != EINTR) {
            *error = QStringLiteral("standard output could not be written: %1").arg(RyFileSystem::lastReason());
            return false;
        }
        done += int(std::max<ssize_t>(count, 0));
    }
    return true;
}

QString BatchStreams::keepInput(const QString &ending, QString *error)
{
    const QString path = m_folder->filePath(InputName + QLatin1Char('.') + ending);
    QFile file(path);
    if (!m_folder->isValid() || !file.open(QIODevice::WriteOnly) || file.write(m_input) != m_input.size() ||
        !file.flush()) {
        *error = QStringLiteral("standard input could not be kept in the folder for temporary files: %1")
                     .arg(m_folder->isValid() ? file.errorString() : m_folder->errorString());
        return {};
    }
    m_input.clear();
    return path;
}

bool BatchStreams::readBytes(const QString &what, QString *error)
{
    if (!m_isRead)
        m_inputError = readInputBytes(&m_input, what);
    m_isRead = true;
    *error = m_inputError;
    return error->isEmpty();
}

void BatchStreams::readAhead(const BatchArguments &arguments)
{
    for (const BatchStep &step : arguments.steps) {
        QString error;
        if (step.readsStandardInput())
            readBytes(step.verb == BatchStep::Script ? ScriptInput : FileInput, &error);
    }
}

QString BatchStreams::readInput(const QString &format, QString *error)
{
    if (!readBytes(FileInput, error))
        return {};
    const QString ending = format.isEmpty() ? RyFileContent::endingOf(m_input.left(RyFileContent::Needed)) : format;
    if (ending.isEmpty()) {
        *error = QStringLiteral("standard input: its first bytes do not tell the format; --format %1 says it")
                     .arg(RySceneFile::readableEndings().join(QStringLiteral(" or ")));
        return {};
    }
    const QString outside = streamOutsideFile(m_input, ending);
    if (!outside.isEmpty()) {
        *error =
            QStringLiteral("standard input: it needs the file %1 beside it, and standard input has no folder; give "
                           "the file by its name, or send a .glb that holds everything")
                .arg(outside);
        return {};
    }
    return keepInput(ending, error);
}

QString BatchStreams::readScript(QString *error)
{
    return readBytes(ScriptInput, error) ? keepInput(QStringLiteral("rsx"), error) : QString();
}

QString BatchStreams::outputFile(const QString &format, QString *error) const
{
    const QDir folder(m_folder->filePath(QStringLiteral("output")));
    if (!m_folder->isValid() || !folder.mkpath(QStringLiteral("."))) {
        *error =
            QStringLiteral("standard output: there is no folder for temporary files: %1").arg(m_folder->errorString());
        return {};
    }
    return folder.filePath(OutputName + QLatin1Char('.') + format);
}

bool BatchStreams::sendFile(const QString &path, QString *error)
{
    const QDir folder(m_folder->filePath(QStringLiteral("output")));
    QStringList others = folder.entryList(QDir::Files | QDir::Hidden);
    QFile file(path);
    others.removeAll(folder.relativeFilePath(path));
    if (!others.isEmpty()) {
        *error = QStringLiteral("standard output: this scene needs %1 files in this format, and a stream is one; save "
                                "it to a folder, or as .glb")
                     .arg(others.size() + 1);
        return false;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("standard output: %1").arg(file.errorString());
        return false;
    }
    return write(file.readAll(), error);
}

QString BatchStreams::named(const QString &message) const
{
    if (!m_folder)
        return message;
    QString text = message;
    for (const QString &ending :
         RySceneFile::readableEndings() + RySceneFile::writableEndings() + QStringList{QStringLiteral("rsx")}) {
        text.replace(m_folder->filePath(InputName + QLatin1Char('.') + ending), QStringLiteral("standard input"));
        text.replace(m_folder->filePath(QStringLiteral("output/") + OutputName + QLatin1Char('.') + ending),
                     QStringLiteral("standard output"));
    }
    return text;
}
