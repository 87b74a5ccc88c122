#include "rycore/io/RySafeFile.h"

#include "rycore/base/RyFileSystem.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <limits>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using RyFileSystem::isProtected;
using RyFileSystem::lastReason;

namespace {

QString obstacle(const QFileInfo &info)
{
    if (info.fileName().isEmpty())
        return QStringLiteral("there is no file name");
    const QFileInfo folder(info.absolutePath());
    if (!folder.exists())
        return QStringLiteral("the folder %1 does not exist").arg(folder.filePath());
    if (!folder.isDir())
        return QStringLiteral("%1 is not a folder").arg(folder.filePath());
    if (info.exists()) {
        if (info.isDir())
            return QStringLiteral("it is a folder");
        if (!info.isFile())
            return QStringLiteral("it is not an ordinary file");
        if (isProtected(info) || !info.isWritable())
            return QStringLiteral("the file is write-protected");
    }
    if (isProtected(folder) || !folder.isWritable())
        return QStringLiteral("the folder %1 is write-protected").arg(folder.filePath());
    return {};
}

/// The new name itself must survive a crash, too; file systems that cannot do this have nothing to lose by it.
void syncFolder(const QString &folder)
{
    const int handle = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle >= 0) {
        ::fsync(handle);
        ::close(handle);
    }
}

constexpr char temporaryEnding[] = ".rysave";

/// A name that is free, or was ours: that of this process, on its machine, with a number.
QString temporaryName(const QString &folder)
{
    static std::atomic<int> number{0};
    return QStringLiteral("%1/ryhost-%2-%3-%4%5")
        .arg(folder, RyFileSystem::machineMark())
        .arg(::getpid())
        .arg(++number)
        .arg(QLatin1String(temporaryEnding));
}

/// Removes what saves of processes that were killed have left in a folder. Of the processes of other machines that
/// share the folder nobody here knows whether they are at work.
void removeLeftovers(const QString &folder)
{
    static const QRegularExpression ours(QStringLiteral("^ryhost-([0-9a-f]+)-(\\d+)-\\d+\\.rysave$"));
    const QStringList names = QDir(folder).entryList({QStringLiteral("ryhost-*-*.rysave")}, QDir::Files | QDir::Hidden);
    for (const QString &name : names) {
        const QRegularExpressionMatch match = ours.match(name);
        if (!match.hasMatch() || match.captured(1) != RyFileSystem::machineMark())
            continue;
        const qlonglong process = match.captured(2).toLongLong(); // 0 for numbers that no process has
        const bool isGone = process > 0 && process <= std::numeric_limits<pid_t>::max() &&
                            ::kill(pid_t(process), 0) != 0 && errno == ESRCH;
        if (isGone)
            ::unlink(QFile::encodeName(folder + QLatin1Char('/') + name).constData());
    }
}

/// A file without a name, which is gone with the process, whatever ends it. File systems that know no such files get
/// one with a name of ours.
class TemporaryFile
{
public:
    explicit TemporaryFile(const QString &folder) : m_folder(folder) {}
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;
    ~TemporaryFile()
    {
        if (m_handle >= 0)
            ::close(m_handle);
        if (!m_name.isEmpty())
            ::unlink(m_name.constData());
    }

    /// These give false with the reason in errno.
    bool open(bool named)
    {
        if (!named) {
            m_handle = ::open(QFile::encodeName(m_folder).constData(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666);
            return m_handle >= 0;
        }
        do {
            m_name = QFile::encodeName(temporaryName(m_folder));
            m_handle = ::open(m_name.constData(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
        } while (m_handle < 0 && errno == EEXIST);
        if (m_handle < 0)
            m_name.clear();
        return m_handle >= 0;
    }
    bool fill(const QByteArray &bytes, const QByteArray &likeFile)
    {
        struct stat status;
        if (::stat(likeFile.constData(), &status) == 0 && ::fchmod(m_handle, status.st_mode & 07777) != 0)
            return false;
        for (qint64 done = 0; done < bytes.size();) {
            const ssize_t written = ::write(m_handle, bytes.constData() + done, size_t(bytes.size() - done));
            if (written < 0 && errno != EINTR)
                return false;
            done += std::max<ssize_t>(written, 0);
        }
        return ::fsync(m_handle) == 0 || errno == EINVAL || errno == EROFS;
    }
    /// Gives it a name of ours if it has none; only such can take the place of another.
    bool giveName()
    {
        const QByteArray unnamed = "/proc/self/fd/" + QByteArray::number(m_handle);
        while (m_name.isEmpty()) {
            const QByteArray name = QFile::encodeName(temporaryName(m_folder));
            if (::linkat(AT_FDCWD, unnamed.constData(), AT_FDCWD, name.constData(), AT_SYMLINK_FOLLOW) == 0)
                m_name = name;
            else if (errno != EEXIST)
                return false;
        }
        return true;
    }
    bool takePlaceOf(const QByteArray &path)
    {
        if (::rename(m_name.constData(), path.constData()) != 0)
            return false;
        m_name.clear();
        return true;
    }

private:
    QString m_folder;
    int m_handle = -1;
    QByteArray m_name; // empty while there is none
};

} // namespace

bool RySafeFile::write(const QString &path, const QByteArray &bytes, QString *error)
{
    const auto fail = [&path, error](const QString &reason) {
        if (error)
            *error = QStringLiteral("%1 cannot be written: %2").arg(path, reason);
        return false;
    };
    QFileInfo info(path);
    if (info.isSymLink())
        info.setFile(info.symLinkTarget());
    const QString reason = obstacle(info);
    if (!reason.isEmpty())
        return fail(reason);

    const QString folder = info.absolutePath();
    const QByteArray target = QFile::encodeName(info.absoluteFilePath());
    removeLeftovers(folder);
    for (const bool named : {false, true}) {
        TemporaryFile file(folder);
        if (!file.open(named)) {
            if (named)
                return fail(lastReason());
            continue;
        }
        if (!file.fill(bytes, target))
            return fail(lastReason());
        if (!file.giveName())
            continue; // without /proc, or where files cannot be linked
        if (!file.takePlaceOf(target))
            return fail(lastReason());
        syncFolder(folder);
        return true;
    }
    return fail(lastReason());
}
