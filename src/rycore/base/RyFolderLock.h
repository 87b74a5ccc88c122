#pragma once

#include <QString>

/// Holds a folder of one's own for this process, by a hidden file in it. The system takes the lock away however the
/// process ends, so that who sweeps can tell what is in use from what was left behind. A link is never followed, and
/// a folder of somebody else never held.
class RyFolderLock
{
public:
    enum Result {
        Held,
        Others,    ///< another process holds it, or it went meanwhile
        Impossible ///< no folder of ours, or one whose file system knows no locks
    };

    static constexpr const char *FileName = ".lock";

    RyFolderLock() = default;
    RyFolderLock(RyFolderLock &&other) noexcept;
    RyFolderLock &operator=(RyFolderLock &&other) noexcept;
    ~RyFolderLock() { release(); }

    /// Lets go of what was held before.
    Result take(const QString &folder);
    bool isHeld() const { return m_handle >= 0; }
    void release();

private:
    int m_handle = -1;
};
