#include "ryhost/recovery/RecoverySession.h"

#include "rycore/base/RyFileSystem.h"
#include "rycore/io/snapshot/RySnapshotStore.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr qint64 SecondsToStart = 60; // what takes longer was ended in the middle

/// The handle of the lock file, or -1 when somebody else has it.
int lockIn(const QString &folder)
{
    const QByteArray path = QFile::encodeName(folder + QStringLiteral("/lock"));
    const int handle = ::open(path.constData(), O_CREAT | O_RDWR | O_CLOEXEC, 0600);
    if (handle < 0)
        return -1;
    struct stat held, found;
    // Whoever had it may have removed it between opening and locking.
    const bool isOurs = ::flock(handle, LOCK_EX | LOCK_NB) == 0 && ::fstat(handle, &held) == 0 &&
                        ::stat(path.constData(), &found) == 0 && held.st_ino == found.st_ino;
    if (isOurs)
        return handle;
    ::close(handle);
    return -1;
}

/// That of the folder, or of the nearest above it that is there.
QFileInfo nearest(const QString &folder)
{
    QFileInfo info(folder);
    while (!info.exists() && !info.isRoot() && info.absolutePath() != info.absoluteFilePath())
        info.setFile(info.absolutePath());
    return info;
}

} // namespace

QString RecoverySession::obstacle(const QString &parent)
{
    const QFileInfo info = nearest(parent);
    if (!info.isDir())
        return tr("%1 is not a folder").arg(info.filePath());
    if (RyFileSystem::isProtected(info) || !info.isWritable())
        return tr("the folder %1 is write-protected").arg(info.filePath());
    if (info.ownerId() != ::getuid() && QFileInfo(parent).exists())
        return tr("the folder %1 belongs to somebody else").arg(parent);
    return {};
}

std::unique_ptr<RecoverySession> RecoverySession::create(const QString &parent, QString *error)
{
    *error = obstacle(parent);
    if (!error->isEmpty())
        return nullptr;
    if (!QDir().mkpath(parent)) {
        *error = tr("the folder %1 cannot be made: %2").arg(parent, RyFileSystem::lastReason());
        return nullptr;
    }
    // Others look at folders of the final name only, and those are locked from the beginning.
    const QString number = QStringLiteral("%1-%2").arg(::getpid()).arg(QDateTime::currentMSecsSinceEpoch());
    const QString first = QStringLiteral("%1/starting-%2").arg(parent, number);
    const QString last = QStringLiteral("%1/session-%2").arg(parent, number);
    if (::mkdir(QFile::encodeName(first).constData(), 0700) != 0) {
        *error = tr("the folder %1 cannot be made: %2").arg(first, RyFileSystem::lastReason());
        return nullptr;
    }
    const int lock = lockIn(first);
    if (lock < 0 || ::rename(QFile::encodeName(first).constData(), QFile::encodeName(last).constData()) != 0) {
        *error = tr("the folder %1 cannot be used: %2").arg(first, RyFileSystem::lastReason());
        if (lock >= 0)
            ::close(lock);
        QDir(first).removeRecursively();
        return nullptr;
    }
    return std::unique_ptr<RecoverySession>(new RecoverySession(last, lock));
}

std::unique_ptr<RecoverySession> RecoverySession::adopt(const QString &folder)
{
    const QFileInfo info(folder);
    if (!info.isDir() || info.ownerId() != ::getuid())
        return nullptr;
    const int lock = lockIn(folder);
    return std::unique_ptr<RecoverySession>(lock < 0 ? nullptr : new RecoverySession(folder, lock));
}

QStringList RecoverySession::leftBehind(const QStringList &parents)
{
    QStringList found;
    for (const QString &parent : parents) {
        for (const QFileInfo &each : QDir(parent).entryInfoList({QStringLiteral("session-*")}, QDir::Dirs)) {
            const std::unique_ptr<RecoverySession> session = adopt(each.filePath());
            if (session && RySnapshotStore::hasSnapshot(session->folder()))
                found.append(session->folder());
            else if (session)
                session->remove();
        }
        for (const QFileInfo &each : QDir(parent).entryInfoList({QStringLiteral("starting-*")}, QDir::Dirs)) {
            if (each.lastModified().secsTo(QDateTime::currentDateTime()) > SecondsToStart)
                QDir(each.filePath()).removeRecursively();
        }
    }
    return found;
}

RecoverySession::~RecoverySession()
{
    ::close(m_lock);
}

void RecoverySession::remove()
{
    QDir(m_folder).removeRecursively();
}
