#include "rycore/base/RyTemporaryFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

enum class Lock { Held, Impossible, Others };

/// Somebody who sweeps may take a new folder between its making and its locking.
Lock takeLock(const QString &folder, int *handle)
{
    const QByteArray path = QFile::encodeName(folder);
    *handle = ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (*handle < 0)
        return errno == ENOENT ? Lock::Others : Lock::Impossible;
    struct stat held, found;
    Lock lock = Lock::Held;
    if (::flock(*handle, LOCK_EX | LOCK_NB) != 0)
        lock = errno == EWOULDBLOCK ? Lock::Others : Lock::Impossible;
    else if (::fstat(*handle, &held) != 0 || ::stat(path.constData(), &found) != 0 || held.st_ino != found.st_ino)
        lock = Lock::Others;
    if (lock != Lock::Held) {
        ::close(*handle);
        *handle = -1;
    }
    return lock;
}

void removeLeftovers(const QString &prefix)
{
    const QDir temporary(QDir::tempPath());
    for (const QFileInfo &folder : temporary.entryInfoList({prefix + QLatin1String("-??????")},
                                                           QDir::Dirs | QDir::NoSymLinks | QDir::NoDotAndDotDot)) {
        int handle = -1;
        if (folder.ownerId() != ::getuid() || takeLock(folder.filePath(), &handle) != Lock::Held)
            continue;
        QDir(folder.filePath()).removeRecursively();
        ::close(handle);
    }
}

} // namespace

RyTemporaryFolder::RyTemporaryFolder(const QString &prefix)
{
    removeLeftovers(prefix);
    do {
        if (m_folder)
            m_folder->setAutoRemove(false); // it is no longer ours
        m_folder = std::make_unique<QTemporaryDir>(QStringLiteral("%1/%2-XXXXXX").arg(QDir::tempPath(), prefix));
    } while (m_folder->isValid() && takeLock(m_folder->path(), &m_lock) == Lock::Others);
}

RyTemporaryFolder::~RyTemporaryFolder()
{
    m_folder.reset();
    if (m_lock >= 0)
        ::close(m_lock);
}

bool RyTemporaryFolder::isValid() const
{
    return m_folder->isValid();
}

QString RyTemporaryFolder::errorString() const
{
    return m_folder->errorString();
}

QString RyTemporaryFolder::filePath(const QString &name) const
{
    return m_folder->filePath(name);
}
