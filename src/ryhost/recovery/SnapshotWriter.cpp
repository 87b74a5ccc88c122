#include "ryhost/recovery/SnapshotWriter.h"

#include "rycore/base/RyFolderLock.h"

#include <QDir>
#include <QFileInfo>

#include <exception>
#include <new>
#include <utility>

void SnapshotWriter::Worker::use(std::unique_ptr<RecoverySession> other)
{
    if (session)
        session->remove();
    session = std::move(other);
    store = session ? std::make_unique<RySnapshotStore>(session->folder()) : nullptr;
}

bool SnapshotWriter::Worker::writeHere(const RySnapshotParts &parts, QString *error)
{
    const auto isThere = [](const QString &folder) {
        return QFileInfo::exists(QStringLiteral("%1/%2").arg(folder, QLatin1String(RyFolderLock::FileName)));
    };
    return session && isThere(session->folder()) && store->write(parts, error);
}

/// The folder above which it was written; what was written before is there until then.
QString SnapshotWriter::Worker::write(const RySnapshotParts &parts, const QStringList &folders, QString *error)
{
    for (const QString &folder : folders) {
        QString reason;
        if (session && parent == folder) {
            if (writeHere(parts, &reason))
                return parent;
        }
        if (reason.isEmpty()) {
            std::unique_ptr<RecoverySession> other = RecoverySession::create(folder, &reason);
            RySnapshotStore otherStore(other ? other->folder() : QString());
            if (other && otherStore.write(parts, &reason)) {
                use(std::move(other));
                *store = std::move(otherStore);
                parent = folder;
                return parent;
            }
            if (other)
                other->remove();
        }
        if (error->isEmpty())
            *error = reason;
    }
    // What was brought back may lie where nothing is chosen any more, and better there than nowhere.
    QString reason;
    return session && !folders.contains(parent) && writeHere(parts, &reason) ? parent : QString();
}

/// An exception that leaves the thread would end the program, and with it the work that is to be kept.
QString SnapshotWriter::Worker::tryToWrite(const RySnapshotParts &parts, const QStringList &folders, QString *error)
{
    try {
        return write(parts, folders, error);
    } catch (const std::bad_alloc &) {
        *error = tr("the scene needs more memory than this machine has");
    } catch (const std::exception &failure) {
        *error = QString::fromUtf8(failure.what());
    }
    return {};
}

SnapshotWriter::SnapshotWriter(QObject *parent) : QObject(parent), m_worker(new Worker)
{
    m_worker->moveToThread(&m_thread);
    connect(
        &m_thread, &QThread::finished, m_worker,
        [worker = m_worker] {
            worker->use(nullptr);
            delete worker;
        },
        Qt::DirectConnection);
    m_thread.setObjectName(QStringLiteral("Autosave"));
    m_thread.start();
}

SnapshotWriter::~SnapshotWriter()
{
    m_thread.quit();
    m_thread.wait();
}

void SnapshotWriter::adopt(std::unique_ptr<RecoverySession> session)
{
    // What the queue holds can be copied.
    const auto passed = std::make_shared<std::unique_ptr<RecoverySession>>(std::move(session));
    QMetaObject::invokeMethod(
        m_worker,
        [worker = m_worker, passed] {
            worker->use(std::move(*passed));
            worker->parent = QFileInfo(worker->session->folder()).path();
        },
        Qt::QueuedConnection);
}

void SnapshotWriter::write(RySnapshotParts parts, const QStringList &folders)
{
    QMetaObject::invokeMethod(
        m_worker,
        [this, worker = m_worker, parts = std::move(parts), folders] {
            QString error;
            const QString folder = worker->tryToWrite(parts, folders, &error);
            QMetaObject::invokeMethod(
                this,
                [this, folder, error] {
                    --m_jobs;
                    emit written(folder, error);
                },
                Qt::QueuedConnection);
        },
        Qt::QueuedConnection);
    ++m_jobs; // where there was no memory to ask for it, nobody would tell of its end
}

void SnapshotWriter::drop()
{
    QMetaObject::invokeMethod(
        m_worker,
        [worker = m_worker] {
            if (worker->store)
                worker->store->clear();
        },
        Qt::QueuedConnection);
}
