#pragma once

#include "rycore/ui/RyAction.h"

struct RyJEActionText;
struct RySelectionRule;

/// Base of every menu action of the joint editor.
class RyJEToolAction : public RyAction
{
    Q_OBJECT
public:
    RyJEToolAction(const QString &text, const QString &description);

    QString getActionGroup() const override;

protected:
    /// Takes the texts of the class from the action table and the class name as object name. The action starts
    /// disabled, and says that it is not available yet, until its class enables it or lets it follow the selection.
    explicit RyJEToolAction(const QMetaObject &actionClass);

    /// Calls the slot selectionChanged() of the class now and whenever the selection changes.
    void followSelection();
    /// Enables the action while the rule holds for the primary selection; otherwise the rule's reason is shown.
    void enableBy(const RySelectionRule &rule);

private:
    explicit RyJEToolAction(const RyJEActionText &row);
};
