#pragma once

#include <QCoreApplication>
#include <QDateTime>
#include <QString>

/// The state of the scene that the undo stack knows as the saved one: how it came to be, and when.
struct SavedState
{
    Q_DECLARE_TR_FUNCTIONS(SavedState)
public:
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
