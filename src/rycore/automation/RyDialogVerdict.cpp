#include "rycore/automation/RyDialogVerdict.h"

#include "rycore/automation/RyDialogDriver.h"

#include <QCoreApplication>

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(RyDialogVerdict)
};

QString unusedReason(const RyDialogDriver &driver)
{
    const QString fields = driver.unusedFields().join(QStringLiteral(", "));
    QStringList titles;
    for (const RyDialogRecord &record : driver.records()) {
        if (record.kind == RyDialogRecord::Dialog)
            titles.append(QLatin1Char('"') + record.title + QLatin1Char('"'));
    }
    return titles.isEmpty()
               ? Texts::tr("No dialog opened that could use %1.").arg(fields)
               : Texts::tr("No dialog used %1; there was %2.").arg(fields, titles.join(QStringLiteral(", ")));
}

} // namespace

RyDialogVerdict ryJudgeDialogs(const RyDialogDriver &driver)
{
    RyDialogVerdict verdict;
    for (const QString &title : driver.unusedAnswers())
        verdict.notes.append(Texts::tr("No message box \"%1\" asked for its answer.").arg(title));
    if (!driver.errors().isEmpty()) {
        verdict.outcome = RyOutcome::WrongUse;
        verdict.reason = driver.errors().join(QLatin1Char(' '));
        return verdict;
    }
    for (const RyDialogRecord &record : driver.records()) {
        if (record.outcome != RyOutcome::Refused)
            continue;
        verdict.outcome = RyOutcome::Refused;
        verdict.reason = record.isRejected()
                             ? Texts::tr("The dialog \"%1\" was not accepted: %2").arg(record.title, record.reason)
                             : record.plainText();
        return verdict;
    }
    for (const RyDialogRecord &record : driver.records()) {
        if (record.outcome != RyOutcome::Cancelled)
            continue;
        verdict.outcome = RyOutcome::Cancelled;
        verdict.reason = Texts::tr("\"%1\" was answered with %2.").arg(record.title, record.answered);
        break;
    }
    if (!driver.unusedFields().isEmpty()) {
        verdict.outcome = ryWithUnusedFields(verdict.outcome);
        verdict.reason = unusedReason(driver);
    }
    return verdict;
}
