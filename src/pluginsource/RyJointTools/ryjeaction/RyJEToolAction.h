#pragma once

#include "rycore/ui/RyAction.h"

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
    /// disabled.
    explicit RyJEToolAction(const QMetaObject &actionClass);

private:
    explicit RyJEToolAction(const RyJEActionText &row);
};
