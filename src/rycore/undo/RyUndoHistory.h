#pragma once

#include <QDateTime>
#include <QString>

#include <vector>

class RyUndoStack;

/// The steps of a stack as they are at one moment, to be shown in a list; it keeps none of them alive.
struct RyUndoHistory
{
    struct Step
    {
        QString caption;
        QDateTime time;     // when it was made
        quint64 number = 0; // tells it from all others, dropped ones too; grows with time
        bool isEmpty = false;
    };

    RyUndoHistory() = default;
    explicit RyUndoHistory(const RyUndoStack &stack);

    std::vector<Step> steps;
    int index = 0;      // how many of them are done
    int cleanIndex = 0; // how many are in the saved state; -1 when none of them leads there

    /// The largest number of a step; 0 without any.
    quint64 lastNumber() const;

    /// Undoes or redoes until so many steps are done. False where that cannot be: out of range, or while undo and redo
    /// do nothing.
    static bool walk(RyUndoStack &stack, int index);
};
