#pragma once

#include "rycore/io/snapshot/RySnapshotStore.h"
#include "ryhost/recovery/RecoverySession.h"

#include <QObject>
#include <QStringList>
#include <QThread>

#include <memory>

/// Writes snapshots in a thread of its own, which sees nothing but their bytes.
class SnapshotWriter : public QObject
{
    Q_OBJECT
public:
    explicit SnapshotWriter(QObject *parent = nullptr);
    /// Ends what is being written and removes everything: the program ends in order.
    ~SnapshotWriter() override;

    /// Goes on in the folder of a program that has ended.
    void adopt(std::unique_ptr<RecoverySession> session);
    /// Into the first of the folders that can be written.
    void write(RySnapshotParts parts, const QStringList &folders);
    /// Removes what was written.
    void drop();
    bool isBusy() const { return m_jobs > 0; }
    /// Another snapshot would wait for more than one.
    bool isFull() const { return m_jobs > 1; }

signals:
    /// `folder` is empty where nothing could be written, for the reason `error`; otherwise that says why an earlier one
    /// of the folders was not taken, or is empty.
    void written(const QString &folder, const QString &error);

private:
    /// Lives in the thread.
    struct Worker : QObject
    {
        /// Likewise where there is no memory for it.
        QString tryToWrite(const RySnapshotParts &parts, const QStringList &folders, QString *error);
        QString write(const RySnapshotParts &parts, const QStringList &folders, QString *error);
        bool writeHere(const RySnapshotParts &parts, QString *error);
        void use(std::unique_ptr<RecoverySession> session);

        std::unique_ptr<RecoverySession> session;
        std::unique_ptr<RySnapshotStore> store;
        QString parent; // of the session
    };

    QThread m_thread;
    Worker *m_worker;
    int m_jobs = 0;
};
