#pragma once

#include "rycore/automation/RyDialogRecord.h"
#include "rycore/automation/RyOutcome.h"

#include <vector>

class RyActionMgr;
class RyDialogDriver;

/// What running an action came to.
struct RyActionResult
{
    RyOutcome outcome = RyOutcome::Ran;
    QString reason;    // why it did not run, or what was wrong
    QStringList notes; // what did no harm: an answer that no message box asked for, warnings in the log
    std::vector<RyDialogRecord> dialogs; // all that the driver took

    /// For scripts and reports: ran, refused, cancelled, reason, notes, boxes.
    QVariantMap toMap() const;
};

/// Runs actions by class name without a person.
class RyActionRunner
{
public:
    /// `manager` must outlive the runner; null: there are no actions.
    explicit RyActionRunner(const RyActionMgr *manager);

    /// The driver takes what opens, and judges it by the fields and answers that it was given. What it took before
    /// belongs to the run too.
    RyActionResult run(const QString &className, const RyDialogDriver &driver) const;

    /// Class names of all actions, sorted.
    QStringList names() const;
    /// What to say of a class that is not there, with those that look like it.
    QString unknownReason(const QString &className) const;
    /// Those that look like `name`.
    QStringList nearNames(const QString &name) const;

private:
    const RyActionMgr *m_manager;
};
