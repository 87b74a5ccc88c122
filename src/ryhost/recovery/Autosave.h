#pragma once

#include "ryhost/recovery/SnapshotWriter.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>

class HostFiles;
class RyScene;

/// Keeps the unsaved work of the window on the disk, for after a crash: half a second after an edit, when nothing is
/// being edited, later where a snapshot takes long: snapshots never take more than a fifth of the window's time. The
/// scene is only read. What was kept goes when the scene is saved or the program ends in order.
class Autosave : public QObject
{
    Q_OBJECT
public:
    Autosave(RyScene &scene, HostFiles &files, QObject *parent = nullptr);
    ~Autosave() override;

    /// Goes on with what was recovered, which stays where it is until there is something newer.
    void adopt(std::unique_ptr<RecoverySession> session);
    /// Whether all that was edited is on the disk.
    bool isUpToDate() const { return !m_isPending && !m_writer.isBusy(); }

    static constexpr int Pause = 500; ///< milliseconds after an edit
    /// Milliseconds after a snapshot that took `cost` of them.
    static int pauseAfter(double cost);

signals:
    /// For the person at the screen: that work is not being kept, and why; or that it is again.
    void messagePosted(const QString &message);

private:
    void noteChange();
    void settle();
    void takeWhenDue();
    bool isEdited() const;
    bool isIdle() const;
    void take();
    bool pass(QString *error);
    void drop();
    void noteWritten(const QString &folder, const QString &error);
    void tell(const QString &problem, const QString &message);
    void applySettings();

    QPointer<RyScene> m_scene;
    HostFiles &m_files;
    SnapshotWriter m_writer;
    QTimer m_timer;
    QTimer m_settling;         // until everything that a change brings with it has happened
    QElapsedTimer m_sinceTake; // not valid before the first
    bool m_isPending = false;  // something changed since the latest snapshot
    bool m_isSettled = false;  // and nothing is in the middle of changing
    bool m_isOfAction = false; // an action that still runs changed something
    bool m_isKept = false;     // there may be a snapshot on the disk
    double m_cost = 0.0;       // of the latest snapshot, in milliseconds of the processor
    QString m_problem;         // the latest that was told
};
