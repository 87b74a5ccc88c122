#include "rycore/base/RyFolderLock.h"

#include <QFile>

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool isSameFile(const struct stat &a, const struct stat &b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

RyFolderLock::Result lockIn(int folder, const QByteArray &path, int *handle)
{
    struct stat opened, named, held, found;
    if (::fstat(folder, &opened) != 0 || opened.st_uid != ::getuid())
        return RyFolderLock::Impossible;
    // A file, since a folder cannot be locked everywhere: network file systems ask for a handle that may write.
    *handle = ::openat(folder, RyFolderLock::FileName, O_CREAT | O_RDWR | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (*handle < 0)
        return errno == ENOENT ? RyFolderLock::Others : RyFolderLock::Impossible;
    if (::flock(*handle, LOCK_EX | LOCK_NB) != 0)
        return errno == EWOULDBLOCK ? RyFolderLock::Others : RyFolderLock::Impossible;
    // Whoever had it may have removed the file, or the whole folder, between opening and locking.
    const bool isThere =
        ::lstat(path.constData(), &named) == 0 && isSameFile(opened, named) && ::fstat(*handle, &held) == 0 &&
        ::fstatat(folder, RyFolderLock::FileName, &found, AT_SYMLINK_NOFOLLOW) == 0 && isSameFile(held, found);
    return isThere ? RyFolderLock::Held : RyFolderLock::Others;
}

} // namespace

RyFolderLock::RyFolderLock(RyFolderLock &&other) noexcept : m_handle(std::exchange(other.m_handle, -1)) {}

RyFolderLock &RyFolderLock::operator=(RyFolderLock &&other) noexcept
{
    std::swap(m_handle, other.m_handle);
    return *this;
}

RyFolderLock::Result RyFolderLock::take(const QString &folder)
{
    release();
    const QByteArray path = QFile::encodeName(folder);
    const int opened = ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (opened < 0)
        return errno == ENOENT ? Others : Impossible;
    const Result result = lockIn(opened, path, &m_handle);
    ::close(opened);
    if (result != Held)
        release();
    return result;
}

void RyFolderLock::release()
{
    if (m_handle >= 0)
        ::close(m_handle);
    m_handle = -1;
}
