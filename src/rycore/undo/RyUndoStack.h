#pragma once

#include "rycore/undo/RyUndoItem.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

class QDateTime;
class RyUndoObserver;
class RyUndoStep;

/// The undo history. It records only while a hold is open, no lock is held and no undo or redo runs; edits at other
/// times are applied and not recorded, and older steps survive them.
class RyUndoStack : public QObject
{
    Q_OBJECT
public:
    explicit RyUndoStack(QObject *parent = nullptr);
    ~RyUndoStack() override;

    /// The application's stack, made at first use; null after `destroyGlobal`.
    static RyUndoStack *global();
    static void destroyGlobal();

    bool isRecording() const;
    /// True while undo or redo runs, and while a cancelled hold is being reverted.
    bool isInUndoRedo() const;
    bool isLocked() const;
    bool isHoldOpen() const;

    /// Keeps a change that is about to happen (or has just happened); drops it when nothing records or when the
    /// innermost hold already has one with its key. Structural items are recorded through the same call.
    void record(std::unique_ptr<RyUndoItem> item);
    /// The same, without making the item when it would be dropped.
    void record(const RyUndoKey &key, const std::function<std::unique_ptr<RyUndoItem>()> &makeItem);
    template<typename Item, typename... Args>
    void record(const RyUndoKey &key, Args &&...args)
    {
        if (const unsigned takers = wants(key))
            append(key, std::make_shared<Item>(std::forward<Args>(args)...), takers);
    }

    /// Undo and redo do nothing while a hold is open or when called by a listener of a running undo. The state comes
    /// back exactly: what listeners write meanwhile, and the step does not hold, is put back.
    void undo();
    void redo();
    bool canUndo() const;
    bool canRedo() const;
    /// Undoes or redoes until so many steps are done, and announces that as one change. False when there are not so
    /// many, and while undo and redo do nothing; a listener who opens a hold on the way ends it at the step reached.
    bool goTo(int index);
    /// Number of steps, undone ones included; `index()` of them are done.
    int count() const;
    int index() const;
    QString caption(int step) const;
    /// When a step was made; invalid for one that is not there.
    QDateTime time(int step) const;
    /// Tells a step from all others, dropped ones too, and grows from step to step; 0 for one that is not there.
    quint64 number(int step) const;
    QString undoText() const;
    QString redoText() const;
    /// Number of changes in a step: what a drag of many moves is measured by.
    int entryCount(int step) const;

    /// Drops all steps, also under a lock and while a hold is open (which stays open, empty).
    void clearAll();

    /// Marks the present state as saved; `isClean()` until the state differs again, also by an edit that was not
    /// recorded.
    void setClean();
    bool isClean() const;
    /// How many steps are done in the saved state; -1 when none of them leads there.
    int cleanIndex() const;

    /// At most one; it goes before the stack does.
    void setObserver(std::unique_ptr<RyUndoObserver> observer);

signals:
    /// The document is about to change: a hold opens, a change is to be kept or passes by unrecorded, a step is undone
    /// or redone.
    void aboutToChange();
    /// Steps, index, or what can be undone may have changed.
    void changed();
    void cleanChanged(bool clean);

private:
    friend class RyUndoHistoryAccess;
    friend class RyUndoStackHold;
    friend class RyUndoStackLock;
    /// Who keeps a change.
    enum Taker : unsigned { OpenHold = 1, Observer = 2, Aside = 4 };
    /// All steps, how many of them are done, and which count of done ones is the saved state (-1: none).
    struct History
    {
        std::vector<std::shared_ptr<RyUndoStep>> steps;
        int index = 0;
        int cleanIndex = 0;
    };
    unsigned wants(const RyUndoKey &key);
    void swapNext(bool done);
    void swapStep(RyUndoStep &step, bool done);
    void append(const RyUndoKey &key, std::shared_ptr<RyUndoItem> item, unsigned takers);
    // For RyUndoHistoryAccess, which documents them.
    bool isIdle() const;
    History history() const;
    void exchangeHistory(const History &history, const std::function<void()> &swapAll);
    void discardIn(const std::function<void()> &drop);
    void setLocked(bool locked);
    int openHold();
    void acceptHold(int id, const QString &caption);
    void cancelHold(int id);
    void forgetHold(int id);
    void updateClean();

    struct Private;
    std::unique_ptr<Private> d;
};

/// The application's stack.
RyUndoStack *ryUndoStack();
