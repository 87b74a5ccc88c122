#pragma once

#include "rycore/ui/RyAction.h"

struct RyJEActionRow;
struct RySelectionRule;

/// Base of every menu action of the joint editor.
class RyJEToolAction : public RyAction
{
    Q_OBJECT
public:
    RyJEToolAction(const QString &text, const QString &description);

    QString getActionGroup() const override;

protected:
    /// Takes what the action table says of the class, and the class name as object name. A rule that looks at the
    /// selection is followed from then on.
    explicit RyJEToolAction(const QMetaObject &actionClass);

    /// Enables the action while its rule holds; otherwise the rule's reason is shown.
    void followRule();

private:
    explicit RyJEToolAction(const RyJEActionRow &row);

    const RySelectionRule *m_rule = nullptr;
};
