#include "rycore/io/foreign/RyUnnamedFile.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>

RyUnnamedFile::RyUnnamedFile() : m_handle(memfd_create("ryhost-import", MFD_CLOEXEC)) {}

RyUnnamedFile::~RyUnnamedFile()
{
    if (m_handle >= 0)
        ::close(m_handle);
}

QByteArray RyUnnamedFile::readAll() const
{
    struct stat state;
    if (m_handle < 0 || ::fstat(m_handle, &state) != 0 || state.st_size > INT_MAX)
        return {};
    QByteArray bytes(int(state.st_size), Qt::Uninitialized);
    for (int at = 0; at < bytes.size();) {
        const ssize_t count = ::pread(m_handle, bytes.data() + at, size_t(bytes.size() - at), at);
        if (count <= 0)
            return {};
        at += int(count);
    }
    return bytes;
}
