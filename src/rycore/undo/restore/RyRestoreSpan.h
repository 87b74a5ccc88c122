#pragma once

#include "rycore/undo/restore/RyRestorePoints.h"

#include <QPointer>

/// Stands around something that changes the document and leaves a restore point before it where undo would not take it
/// back: when it changed something that no step holds, or lost steps that there were. Otherwise nothing stays. A span
/// that begins while a hold is open or undo runs does nothing.
class RyRestoreSpan
{
public:
    /// A command is a single thing to do: of commands within one another the outermost counts, and where no points may
    /// be taken it does nothing. Work is made of commands, as a script is: those within it leave points of their own,
    /// which go when the work leaves one, and it can be taken back whole also where no points may be taken.
    enum class Scope { Command, Work };
    /// `caption` says what it is.
    explicit RyRestoreSpan(Scope scope, const QString &caption = QString());
    ~RyRestoreSpan();
    RyRestoreSpan(const RyRestoreSpan &) = delete;
    RyRestoreSpan &operator=(const RyRestoreSpan &) = delete;

    void setCaption(const QString &caption) { m_caption = caption; }
    /// Whether it would leave a point, where one may be taken, if it ended now.
    bool isNeeded() const;
    bool hasLostSteps() const;
    /// Ends it; true when a point stays. A second time does nothing.
    bool finish();
    /// Ends it with everything as it was at its beginning, the undo history and the restore points too. False, and
    /// nothing is done, while a hold is open.
    bool goBack();

private:
    QPointer<RyRestorePoints> m_points;
    QString m_caption;
    quint64 m_unkept = 0;
    quint64 m_cleared = 0;
    int m_id = 0; // 0: has ended, or never began
};
