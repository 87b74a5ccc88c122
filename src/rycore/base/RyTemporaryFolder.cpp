#include "rycore/base/RyTemporaryFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

namespace {

void removeLeftovers(const QString &prefix)
{
    const QDir temporary(QDir::tempPath());
    for (const QFileInfo &folder : temporary.entryInfoList({prefix + QLatin1String("-??????")},
                                                           QDir::Dirs | QDir::NoSymLinks | QDir::NoDotAndDotDot)) {
        RyFolderLock lock;
        if (lock.take(folder.filePath()) == RyFolderLock::Held)
            QDir(folder.filePath()).removeRecursively();
    }
}

} // namespace

/// Somebody who sweeps may take a new folder between its making and its locking.
RyTemporaryFolder::RyTemporaryFolder(const QString &prefix)
{
    removeLeftovers(prefix);
    do {
        if (m_folder)
            m_folder->setAutoRemove(false); // it is no longer ours
        m_folder = std::make_unique<QTemporaryDir>(QStringLiteral("%1/%2-XXXXXX").arg(QDir::tempPath(), prefix));
    } while (m_folder->isValid() && m_lock.take(m_folder->path()) == RyFolderLock::Others);
}

RyTemporaryFolder::~RyTemporaryFolder() = default;

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
