#pragma once

#include "rycore/base/RyFolderLock.h"

#include <QCoreApplication>
#include <QStringList>

#include <memory>

/// A folder in which one running program keeps its unsaved work. It is locked as long as the program runs, and the
/// system takes the lock away when that ends, however it ends.
class RecoverySession
{
    Q_DECLARE_TR_FUNCTIONS(RecoverySession)
public:
    /// A new one below `parent`, which is made where it is missing. Null with a reason.
    static std::unique_ptr<RecoverySession> create(const QString &parent, QString *error);
    /// That of a program that no longer runs, from now on ours; null while another has it.
    static std::unique_ptr<RecoverySession> adopt(const QString &folder);
    /// Folders with unsaved work of programs that no longer run. Those without any are removed. What somebody else owns
    /// and what a link leads to is let be.
    static QStringList leftBehind(const QStringList &parents);
    /// Why a new one could not be made there; empty when it could.
    static QString obstacle(const QString &parent);

    RecoverySession(const RecoverySession &) = delete;
    RecoverySession &operator=(const RecoverySession &) = delete;

    const QString &folder() const { return m_folder; }
    /// Deletes it with all that it holds.
    void remove();

private:
    RecoverySession(const QString &folder, RyFolderLock lock) : m_folder(folder), m_lock(std::move(lock)) {}

    QString m_folder;
    RyFolderLock m_lock;
};
