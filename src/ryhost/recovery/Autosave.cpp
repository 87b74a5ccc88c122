#include "ryhost/recovery/Autosave.h"

#include "rycore/base/RyMessageLog.h"
#include "rycore/io/snapshot/RySceneSnapshot.h"
#include "rycore/scene/RyScene.h"
#include "rycore/ui/RyRunningAction.h"
#include "rycore/undo/RyUndoStack.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/recovery/AutosaveSettings.h"
#include "ryhost/recovery/RecoveryInfo.h"

#include <QApplication>
#include <QDir>
#include <QProgressDialog>

#include <algorithm>
#include <ctime>
#include <new>

namespace {

constexpr int RetryPause = 100; // while something is in the middle of being edited
constexpr double PausePerCost = 4.0;

/// Milliseconds of this thread: what other programs do meanwhile shall not make snapshots rarer.
double processorTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return 1e3 * double(time.tv_sec) + 1e-6 * double(time.tv_nsec);
}

} // namespace

Autosave::Autosave(RyScene &scene, HostFiles &files, QObject *parent) : QObject(parent), m_scene(&scene), m_files(files)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    m_settling.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &Autosave::takeWhenDue);
    connect(&m_settling, &QTimer::timeout, this, &Autosave::settle);
    connect(ryUndoStack(), &RyUndoStack::aboutToChange, this, &Autosave::noteChange);
    connect(ryUndoStack(), &RyUndoStack::changed, this, &Autosave::noteChange);
    connect(ryUndoStack(), &RyUndoStack::cleanChanged, this, [this](bool clean) {
        if (clean)
            drop();
        else
            noteChange();
    });
    // It belongs to another file now, or is written otherwise.
    connect(&files, &HostFiles::pathChanged, this, &Autosave::noteChange);
    connect(&files, &HostFiles::savesJointsOnlyChanged, this, &Autosave::noteChange);
    connect(&m_writer, &SnapshotWriter::written, this, &Autosave::noteWritten);
    connect(&AutosaveSettings::global(), &AutosaveSettings::changed, this, &Autosave::applySettings);
}

Autosave::~Autosave()
{
    if (ryUndoStack())
        disconnect(ryUndoStack(), nullptr, this, nullptr);
}

void Autosave::adopt(std::unique_ptr<RecoverySession> session)
{
    m_writer.adopt(std::move(session));
    m_isKept = true;
}

/// Something changed, or is about to.
void Autosave::noteChange()
{
    // An edit that takes long may begin here, and a crash within it shall not cost what was done before.
    const bool isSoon = m_sinceTake.isValid() && double(m_sinceTake.elapsed()) < PausePerCost * m_cost;
    if (m_isPending && m_isSettled && isIdle() && !isSoon && !m_writer.isFull())
        take();
    m_isSettled = false;
    m_isOfAction = m_isOfAction || RyRunningAction::isAny();
    if (!m_settling.isActive())
        m_settling.start(0);
    if (m_isPending)
        return;
    m_isPending = true;
    m_timer.start(m_sinceTake.isValid() ? std::max<int>(Pause, int(pauseAfter(m_cost) - m_sinceTake.elapsed()))
                                        : Pause);
}

/// Whatever changed has come to an end, since events are handled again.
void Autosave::settle()
{
    m_isOfAction = m_isOfAction && RyRunningAction::isAny();
    m_isSettled = isIdle();
}

bool Autosave::isEdited() const
{
    return m_scene && ryUndoStack() && !ryUndoStack()->isClean();
}

bool Autosave::isIdle() const
{
    const RyUndoStack *stack = ryUndoStack();
    return m_scene && stack && !stack->isHoldOpen() && !stack->isInUndoRedo() && !stack->isLocked() &&
           !m_scene->isInRiggingEdit() && !(m_isOfAction && RyRunningAction::isAny()) &&
           !qobject_cast<QProgressDialog *>(QApplication::activeModalWidget());
}

int Autosave::pauseAfter(double cost)
{
    return std::max(int(PausePerCost * cost), Pause);
}

void Autosave::takeWhenDue()
{
    if (!m_isPending)
        return;
    if (!AutosaveSettings::global().isOn() || !isEdited()) {
        drop();
        m_isPending = ryUndoStack() && ryUndoStack()->isHoldOpen(); // it may end as an edit
        if (m_isPending)
            m_timer.start(RetryPause);
        return;
    }
    m_isOfAction = m_isOfAction && RyRunningAction::isAny();
    if (isIdle() && !m_writer.isBusy())
        take();
    else
        m_timer.start(RetryPause);
}

void Autosave::take()
{
    QString error;
    bool isTaken = false;
    const double start = processorTime();
    try {
        if (!isEdited() || !AutosaveSettings::global().isOn())
            return;
        m_timer.stop();
        m_isPending = false;
        isTaken = pass(&error);
    } catch (const std::bad_alloc &) {
        error = tr("the scene needs more memory than this machine has");
    }
    m_cost = processorTime() - start;
    m_sinceTake.start();
    if (!isTaken)
        noteWritten(QString(), error);
}

/// A snapshot to the one who writes it; false with a reason.
bool Autosave::pass(QString *error)
{
    const auto snapshot = RySceneSnapshot::take(*m_scene, m_files.savesJointsOnly(), error);
    if (!snapshot)
        return false;
    RySnapshotParts parts = snapshot->parts();
    parts.push_back({RecoveryInfo::PartName, RecoveryInfo::of(m_files, snapshot->losses).toBytes(), false, {}});
    m_writer.write(std::move(parts), AutosaveSettings::global().folders());
    m_isKept = true;
    return true;
}

void Autosave::drop()
{
    if (m_isKept)
        m_writer.drop();
    m_isKept = false;
}

void Autosave::noteWritten(const QString &folder, const QString &error)
{
    const QString place = QDir::toNativeSeparators(folder);
    if (folder.isEmpty()) {
        tell(error,
             tr("Unsaved work is not being kept: %1. Save it; Edit > Preferences chooses another folder.").arg(error));
    } else if (!error.isEmpty()) {
        tell(error, tr("Unsaved work is kept in %1, since %2.").arg(place, error));
    } else {
        AutosaveSettings::global().setState(tr("Unsaved work is kept in %1.").arg(place));
        if (!m_problem.isEmpty())
            emit messagePosted(AutosaveSettings::global().state());
        m_problem.clear();
    }
}

/// Once, and again only when the reason is another: edits go on all the time.
void Autosave::tell(const QString &problem, const QString &message)
{
    AutosaveSettings::global().setState(message);
    if (m_problem == problem)
        return;
    m_problem = problem;
    RyMessageLog::global().warning(message);
    emit messagePosted(message);
}

void Autosave::applySettings()
{
    AutosaveSettings::global().setState(QString());
    m_problem.clear();
    if (!AutosaveSettings::global().isOn())
        drop();
    else if (isEdited())
        noteChange();
}
