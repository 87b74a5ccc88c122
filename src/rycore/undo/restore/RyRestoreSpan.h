#pragma once

#include "rycore/undo/restore/RyRestorePoints.h"

#include <QPointer>

/// Stands around work of several commands, such as a script, and leaves a restore point before all of it by the rule of
/// `RyRestoreGuard`. Within it the guards of single commands leave points too, which go when it leaves its own. What
/// fails can be taken back whole, also where no restore points may be taken. A span that begins while a hold is open or
/// undo runs does nothing.
class RyRestoreSpan
{
public:
    explicit RyRestoreSpan(const QString &caption);
    ~RyRestoreSpan();
    RyRestoreSpan(const RyRestoreSpan &) = delete;
    RyRestoreSpan &operator=(const RyRestoreSpan &) = delete;

    /// Whether something was changed that no step holds, or steps were lost.
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
