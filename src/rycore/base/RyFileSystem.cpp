#include "rycore/base/RyFileSystem.h"

#include <QCryptographicHash>
#include <QFile>
#include <QSysInfo>

#include <cerrno>
#include <cstring>

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

QString RyFileSystem::lastReason()
{
    if (errno == ENOSPC || errno == EDQUOT)
        return QStringLiteral("there is no space left on the device");
    return QString::fromLocal8Bit(std::strerror(errno));
}

/// QFileInfo::permissions() also tells what the current user may do, and the superuser may do everything; the bits for
/// owner, group and others are those of the file.
bool RyFileSystem::isProtected(const QFileInfo &info)
{
    constexpr QFileDevice::Permissions anyWrite =
        QFileDevice::WriteOwner | QFileDevice::WriteGroup | QFileDevice::WriteOther;
    return !(info.permissions() & anyWrite);
}

bool RyFileSystem::isOwn(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat named, meant;
    return ::lstat(name.constData(), &named) == 0 && ::stat(name.constData(), &meant) == 0 &&
           named.st_uid == ::getuid() && meant.st_uid == ::getuid();
}

QString RyFileSystem::machineMark()
{
    QFile boot(QStringLiteral("/proc/sys/kernel/random/boot_id"));
    struct stat processes; // containers of one machine number their processes each on its own
    if (!boot.open(QIODevice::ReadOnly) || ::stat("/proc/self/ns/pid", &processes) != 0)
        return {};
    const QByteArray told =
        QSysInfo::machineHostName().toUtf8() + '\n' + boot.readAll() + QByteArray::number(qulonglong(processes.st_ino));
    return QString::fromLatin1(QCryptographicHash::hash(told, QCryptographicHash::Sha256).toHex().left(16));
}

QString RyFileSystem::ownFolder()
{
    Dl_info info;
    const bool isKnown = dladdr(reinterpret_cast<void *>(&RyFileSystem::ownFolder), &info) != 0;
    return isKnown ? QFileInfo(QFile::decodeName(info.dli_fname)).absolutePath() : QString();
}
