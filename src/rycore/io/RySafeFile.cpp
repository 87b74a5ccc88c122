#include "rycore/io/RySafeFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace {

constexpr QFileDevice::Permissions anyWrite =
    QFileDevice::WriteOwner | QFileDevice::WriteUser | QFileDevice::WriteGroup | QFileDevice::WriteOther;

/// QFileInfo::permissions() also tells what the current user may do, and the superuser may do everything; the bits for
/// owner, group and others are those of the file.
bool isProtected(const QFileInfo &info)
{
    return !(info.permissions() & (anyWrite & ~QFileDevice::Permissions(QFileDevice::WriteUser)));
}

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

/// Empty when the bytes have reached the disk.
QString syncToDisk(QSaveFile &file)
{
#ifdef Q_OS_UNIX
    if (::fsync(file.handle()) != 0 && errno != EINVAL && errno != EROFS)
        return QString::fromLocal8Bit(std::strerror(errno));
#else
    Q_UNUSED(file)
#endif
    return {};
}

/// The new name itself must survive a crash, too; file systems that cannot do this have nothing to lose by it.
void syncFolder(const QString &folder)
{
#ifdef Q_OS_UNIX
    const int handle = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle >= 0) {
        ::fsync(handle);
        ::close(handle);
    }
#else
    Q_UNUSED(folder)
#endif
}

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

    QSaveFile file(info.absoluteFilePath());
    if (!file.open(QIODevice::WriteOnly))
        return fail(file.errorString());
    if (file.write(bytes) != bytes.size() || !file.flush())
        return fail(file.errorString());
    const QString syncError = syncToDisk(file);
    if (!syncError.isEmpty())
        return fail(syncError);
    if (!file.commit())
        return fail(file.errorString());
    syncFolder(info.absolutePath());
    return true;
}
