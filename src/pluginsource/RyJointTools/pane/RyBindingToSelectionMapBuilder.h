#pragma once

#include "rycore/base/RyBase.h"
#include "rycore/base/RyError.h"

class RyFigure;

/// Makes or completes the selection map of a figure by its skin, so that a click on its surface selects the bone that
/// moves it. Scriptable.
class RyBindingToSelectionMapBuilder : public RyBase
{
    Q_OBJECT
    /// Whether facets get into new groups, one for each bone; otherwise the groups that there are get bones.
    Q_PROPERTY(bool allowRegrouping READ allowsRegrouping WRITE setAllowRegrouping)
    /// Whether groups and bones that have a pair are left alone; otherwise all pairs go first.
    Q_PROPERTY(bool maintainExistingSelectionMappings READ maintainsExistingSelectionMappings WRITE
                   setMaintainExistingSelectionMappings)
    /// Whether the weights of a bone that cannot be selected count for the nearest bone above it that can.
    Q_PROPERTY(bool respectBoneSelectable READ respectsBoneSelectable WRITE setRespectBoneSelectable)
public:
    RyBindingToSelectionMapBuilder();

    /// Success; `UnusableObject` for null, without a skin, and without facets; `NotBound` where no bone is bound, or
    /// one without weights. Nothing is changed unless it succeeds. Opens no undo hold; undoable where one is open.
    Q_INVOKABLE RyError buildSelectionMap(RyFigure *fig);
    /// Why the last call failed; empty after a success.
    Q_INVOKABLE QString getLastError() const { return m_lastError; }

    bool allowsRegrouping() const { return m_allowRegrouping; }
    void setAllowRegrouping(bool allow) { m_allowRegrouping = allow; }
    bool maintainsExistingSelectionMappings() const { return m_maintainExisting; }
    void setMaintainExistingSelectionMappings(bool maintain) { m_maintainExisting = maintain; }
    bool respectsBoneSelectable() const { return m_respectSelectable; }
    void setRespectBoneSelectable(bool respect) { m_respectSelectable = respect; }

private:
    RyError fail(RyError::Code code, const QString &message);

    QString m_lastError;
    bool m_allowRegrouping = true;
    bool m_maintainExisting = true;
    bool m_respectSelectable = true;
};
