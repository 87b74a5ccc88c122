#pragma once

#include "rycore/base/RyFolderLock.h"

#include <memory>

class QTemporaryDir;

/// A folder for the files of one moment, below that for temporary files, which goes with this object. It is locked as
/// long as it is used, and the system takes the lock away however the process ends: what a killed one has left goes
/// when the next one makes a folder of that prefix, and one that is in use stays, whichever container uses it.
class RyTemporaryFolder
{
public:
    /// `prefix` as in "ryhost-import": what is swept and how the name begins.
    explicit RyTemporaryFolder(const QString &prefix);
    RyTemporaryFolder(const RyTemporaryFolder &) = delete;
    RyTemporaryFolder &operator=(const RyTemporaryFolder &) = delete;
    ~RyTemporaryFolder();

    bool isValid() const;
    /// Why it is not.
    QString errorString() const;
    QString filePath(const QString &name) const;

private:
    RyFolderLock m_lock; // let go of when the folder has gone; not held where the file system knows no locks
    std::unique_ptr<QTemporaryDir> m_folder;
};
