#pragma once

#include "rycore/undo/RyUndoStep.h"

#include <functional>
#include <list>
#include <memory>

/// What has happened since the first of its marks, as a list of steps that were done or undone: changes as they are
/// captured, and steps of the undo stack that were swapped. The list is walked back from its end to a mark by swapping
/// each step once; since a swap is its own inverse, that gives the exact state of the mark, whatever lies between.
///
/// Without marks nothing is kept. Dropping a mark or an entry deletes items: the caller sees to it that this is no
/// edit.
class RyUndoLog
{
    struct Entry
    {
        std::shared_ptr<RyUndoStep> step; // null for a mark
        bool done = true;
        bool captured = false; // made here; nobody else holds the step
    };

public:
    using Mark = std::list<Entry>::iterator;

    /// How much it keeps: marks, runs of changes, and swaps.
    int length() const { return int(m_entries.size()); }
    /// A mark for the present state.
    Mark mark();
    /// What lies on both sides of the mark grows together; what lies before all marks goes.
    void drop(Mark mark);

    /// Whether a change about to happen has to be captured: the first of its key since a mark or a swap.
    bool wants(const RyUndoKey &key) const;
    void capture(const RyUndoKey &key, std::shared_ptr<RyUndoItem> item);
    /// A step is about to be redone (`done`) or undone.
    void noteSwap(const std::shared_ptr<RyUndoStep> &step, bool done);

    /// Has everything from `from` back to `mark` swapped, and logs that behind the end. `swap` is given each step and
    /// whether it is to be done or undone.
    void swapBack(Mark from, Mark mark, const std::function<void(RyUndoStep &step, bool done)> &swap);

private:
    static bool canGrow(const Entry &entry);
    /// Whether one takes back what the other did.
    static bool areOpposite(const Entry &a, const Entry &b);
    /// Whether captures go to the last entry.
    bool isOpen() const;
    /// Unites the entries before and at `right` where they make one or cancel each other.
    void join(Mark right);
    /// The same for a step that was swapped back and forth with changes of other values in between.
    void joinAround(Mark between, Mark right);

    std::list<Entry> m_entries;
    int m_marks = 0;
};
