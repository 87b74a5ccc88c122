#pragma once

#include "rycore/undo/restore/RyRestorePoints.h"

#include <QPointer>

/// Stands around a command and leaves a restore point before it where undo would not take it back: when it changed
/// something that no step holds, or lost steps that there were. Otherwise nothing stays. Of nested guards the outermost
/// counts.
class RyRestoreGuard
{
public:
    /// `caption` names the command.
    explicit RyRestoreGuard(const QString &caption = QString());
    ~RyRestoreGuard();
    RyRestoreGuard(const RyRestoreGuard &) = delete;
    RyRestoreGuard &operator=(const RyRestoreGuard &) = delete;

    void setCaption(const QString &caption) { m_caption = caption; }
    /// Whether a point would stay if the command ended now.
    bool isNeeded() const;
    /// Ends the command; a second time does nothing.
    void finish();

private:
    QPointer<RyRestorePoints> m_points;
    QString m_caption;
    quint64 m_unkept = 0;
    int m_id = 0; // 0: none is being taken
};
