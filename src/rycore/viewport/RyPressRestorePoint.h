#pragma once

#include "rycore/undo/restore/RyRestoreSpan.h"

#include <QCoreApplication>
#include <QPointer>

#include <unordered_set>

class RyNode;
class RyScene;

/// Stands around a press of a tool, to its release: leaves a restore point named after the nodes that came or went, or
/// after the tool, where undo would not take the press back.
class RyPressRestorePoint
{
    Q_DECLARE_TR_FUNCTIONS(RyPressRestorePoint)
public:
    RyPressRestorePoint(RyScene *scene, const QString &toolName);
    ~RyPressRestorePoint();

    /// After the press itself: ends at once when the press did what undo does not take back, and no drag goes on.
    void pressed();

private:
    void finish();
    QString caption() const;

    QPointer<RyScene> m_scene;
    QString m_toolName;
    std::unordered_set<const RyNode *> m_nodes; // only compared; some may be gone
    RyRestoreSpan m_span{RyRestoreSpan::Scope::Command};
};
