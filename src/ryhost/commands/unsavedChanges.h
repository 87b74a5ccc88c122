#pragma once

#include <QDateTime>
#include <QString>

class RyUndoStack;

/// The state of the scene that the undo stack knows as the saved one: how it came to be, and when.
struct SavedState
{
    /// Imported: read from a file that is never written, and in no other one yet.
    enum Kind { Started, Opened, Imported, Saved, Recovered };
    Kind kind = Started;
    QDateTime time;
    quint64 lastStep = 0; // the number of the last step then
    QString file;         // the name of what was opened

    static SavedState now(Kind kind);
    /// "the save of 14:05"
    QString text() const;
};

/// A time of today as that alone, an earlier one with its day.
QString timeTextOf(const QDateTime &time);
/// Whether anything differs from that state; of an imported scene, which no file holds, whether there are steps.
bool hasEdits(const RyUndoStack &stack, const SavedState &saved);
/// How many steps were made since, or taken back: "3 edits". Empty when nothing differs.
QString unsavedCountText(const RyUndoStack &stack, const SavedState &saved);
/// "3 edits since the save of 14:05: Bend, Move (2 times)." Empty when nothing differs.
QString unsavedChangesText(const RyUndoStack &stack, const SavedState &saved);
