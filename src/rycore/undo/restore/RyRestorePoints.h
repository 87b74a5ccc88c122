#pragma once

#include "rycore/undo/RyUndoHistoryAccess.h"
#include "rycore/undo/RyUndoObserver.h"
#include "rycore/undo/restore/RyUndoLog.h"

#include <QDateTime>
#include <QObject>
#include <QStringList>

#include <functional>
#include <list>
#include <vector>

class RyUndoKeeper;

/// States of the document to go back to where no undo step leads: before a command that clears the undo history or
/// leaves no step. While there is a point, all changes are captured, in holds and outside, under locks as well; a point
/// costs the old values of what has changed since, once. Going back brings the undo history of that moment back too.
class RyRestorePoints : public QObject, public RyUndoObserver
{
    Q_OBJECT
public:
    /// The stack owns it and has it told.
    explicit RyRestorePoints(RyUndoStack *stack);
    ~RyRestorePoints() override;

    /// How many points there may be; the oldest goes for a new one. 0, the value at first, takes none and captures
    /// nothing.
    void setMost(int most);
    int most() const { return m_most; }

    /// Points by index, the newest first.
    int count() const;
    /// What the states came before: "Delete Bone". Empty for an index out of range.
    QString caption(int index) const;
    QStringList captions() const;
    /// What going back there is called: "Restore to before Delete Bone".
    QString text(int index) const;
    QDateTime time(int index) const;

    /// Takes a point for the present state. False when none may be taken, or while a hold is open or undo runs.
    bool take(const QString &caption);
    /// Brings the state of a point back, and takes a point for the present one, so that this can be taken back. False
    /// for an index out of range, and while a hold is open or undo runs.
    bool restore(int index);
    /// Drops all points.
    void clear();

    /// A keeper lives until it is removed. Removing one drops all points: what they belong to is gone.
    void addKeeper(RyUndoKeeper *keeper);
    void removeKeeper(RyUndoKeeper *keeper);

signals:
    void changed();
    /// A command left a point behind, the newest one.
    void taken();

private:
    friend class RyRestoreSpan;
    struct Point
    {
        int id;
        QString caption;
        QDateTime time;
        RyUndoLog::Mark mark;
        RyUndoHistoryAccess::History history;
        std::vector<std::function<void()>> kept;
        bool wayBack;   // taken by restore
        bool pending;   // of a span, which has not decided yet
        bool isWork;    // lets commands within it decide
        quint64 unkept; // at that time
    };
    using Place = std::list<Point>::iterator;

    bool wants(const RyUndoKey &key) const override { return m_log.wants(key); }
    void capture(const RyUndoKey &key, std::shared_ptr<RyUndoItem> item) override
    {
        m_log.capture(key, std::move(item));
    }
    void noteSwap(const std::shared_ptr<RyUndoStep> &step, bool done) override;
    void noteLooseChange() override { ++m_unkept; }
    void noteClearedHistory() override
    {
        ++m_unkept;
        ++m_cleared;
    }
    void noteSaved() override;
    // Of spans. The id is 0 when one cannot begin now, or a command is within another.
    int begin(bool isWork);
    bool end(int id, bool keep, const QString &caption);
    bool goBack(int id);
    /// Grows with every change that no step holds, and when steps are lost.
    quint64 unkept() const { return m_unkept; }
    /// Grows when steps are lost.
    quint64 cleared() const { return m_cleared; }

    Place add(const QString &caption, bool wayBack, bool pending, bool isWork = false);
    Place find(int id);
    void swapBack(const Point &now, const Point &wanted);
    void drop(Place point);
    void dropTooMany();
    const Point *at(int index) const;

    RyUndoHistoryAccess m_stack;
    std::list<Point> m_points; // oldest first
    std::vector<RyUndoKeeper *> m_keepers;
    RyUndoLog m_log;
    quint64 m_unkept = 0;
    quint64 m_cleared = 0;
    int m_lastId = 0;
    int m_most = 0;
};

/// Those of the application's stack; null when it is gone.
RyRestorePoints *ryRestorePoints();
