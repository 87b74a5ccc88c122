#pragma once

#include "rycore/automation/RyDialogDriver.h"

class RyActionMgr;

/// What running an action came to.
struct RyActionResult
{
    bool ran = false; // the action did what it was asked
    bool refused =
        false; // it was disabled, told why it does nothing, its dialog could not be accepted, or its script failed
    bool cancelled = false; // an answer gave it up
    bool wrongUse =
        false; // no such action, fields and answers that do not fit its dialogs, or, when it ran, that nothing used
    QString reason;    // why it did not run, or what was wrong
    QStringList notes; // what did no harm: an answer that no message box asked for, warnings in the log
    std::vector<RyDialogRecord> dialogs; // dialogs and message boxes in the order in which they opened

    /// For scripts and reports: ran, refused, cancelled, reason, notes, boxes (all that opened).
    QVariantMap toMap() const;
};

/// Runs actions by class name without a person: `RyDialogDriver` takes what opens.
class RyActionRunner
{
public:
    /// `manager` must outlive the runner; null: there are no actions.
    explicit RyActionRunner(const RyActionMgr *manager);

    /// For the next run; see `RyDialogDriver`.
    void setField(const QString &name, const QString &value);
    void setAnswer(const QString &title, const QString &button);

    RyActionResult run(const QString &className);

    /// Class names of all actions, sorted.
    QStringList names() const;
    /// What to say of a class that is not there, with those that look like it.
    QString unknownReason(const QString &className) const;
    /// Those that look like `name`.
    QStringList nearNames(const QString &name) const;

private:
    const RyActionMgr *m_manager;
    std::vector<std::pair<QString, QString>> m_fields;
    std::vector<std::pair<QString, QString>> m_answers;
};
