#include "ryhost/recovery/RecoverySession.h"

#include "rycore/base/RyFileSystem.h"
#include "rycore/io/snapshot/RySnapshotStore.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr qint64 SecondsToStart = 60; // what takes longer was ended in the middle

/// That of the folder, or of the nearest above it that is there.
QFileInfo nearest(const QString &folder)
{
    QFileInfo info(folder);
    while (!info.exists() && !info.isRoot() && info.absolutePath() != info.absoluteFilePath())
        info.setFile(info.absolutePath());
    return info;
}

QStringList foldersIn(const QString &parent, const QString &pattern)
{
    QStringList found;
    for (const QFileInfo &each : QDir(parent).entryInfoList({pattern}, QDir::Dirs | QDir::NoSymLinks))
        found.append(each.filePath());
    return found;
}

} // namespace

QString RecoverySession::obstacle(const QString &parent)
{
    const QFileInfo info = nearest(parent);
    if (!info.isDir())
        return tr("%1 is not a folder").arg(info.filePath());
    if (RyFileSystem::isProtected(info) || !info.isWritable())
        return tr("the folder %1 is write-protected").arg(info.filePath());
    if (QFileInfo(parent).exists() && !RyFileSystem::isOwn(parent))
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
    RyFolderLock lock;
    if (lock.take(first) != RyFolderLock::Held ||
        ::rename(QFile::encodeName(first).constData(), QFile::encodeName(last).constData()) != 0) {
        *error = tr("the folder %1 cannot be used: %2").arg(first, RyFileSystem::lastReason());
        QDir(first).removeRecursively();
        return nullptr;
    }
    return std::unique_ptr<RecoverySession>(new RecoverySession(last, std::move(lock)));
}

std::unique_ptr<RecoverySession> RecoverySession::adopt(const QString &folder)
{
    RyFolderLock lock;
    if (lock.take(folder) != RyFolderLock::Held)
        return nullptr;
    return std::unique_ptr<RecoverySession>(new RecoverySession(folder, std::move(lock)));
}

QStringList RecoverySession::leftBehind(const QStringList &parents)
{
    QStringList found;
    for (const QString &parent : parents) {
        // Whoever owns it could put links there, or the work of others.
        if (!RyFileSystem::isOwn(parent))
            continue;
        for (const QString &folder : foldersIn(parent, QStringLiteral("session-*"))) {
            const std::unique_ptr<RecoverySession> session = adopt(folder);
            if (session && RySnapshotStore::hasSnapshot(session->folder()))
                found.append(session->folder());
            else if (session)
                session->remove();
        }
        for (const QString &folder : foldersIn(parent, QStringLiteral("starting-*"))) {
            if (QFileInfo(folder).lastModified().secsTo(QDateTime::currentDateTime()) <= SecondsToStart)
                continue;
            if (const std::unique_ptr<RecoverySession> session = adopt(folder))
                session->remove();
        }
    }
    return found;
}

void RecoverySession::remove()
{
    QDir(m_folder).removeRecursively();
}
