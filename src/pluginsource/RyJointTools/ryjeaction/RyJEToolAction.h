#pragma once

#include "rycore/ui/RyAction.h"

class RyNode;
struct RyJEActionText;

/// Base of every menu action of the joint editor.
class RyJEToolAction : public RyAction
{
    Q_OBJECT
public:
    RyJEToolAction(const QString &text, const QString &description);

    QString getActionGroup() const override;

protected:
    /// Takes the texts of the class from the action table and the class name as object name. The action starts
    /// disabled until its class says otherwise.
    explicit RyJEToolAction(const QMetaObject &actionClass);

    /// Calls the slot selectionChanged() of the class now and whenever the selection changes.
    void followSelection();
    /// Enables the action while the rule holds for the primary selection.
    void enableBy(bool (*rule)(const RyNode *primary));

private:
    explicit RyJEToolAction(const RyJEActionText &row);
};
