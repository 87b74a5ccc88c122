#include "rycore/automation/RyActionRunner.h"

#include "rycore/automation/RyDialogDriver.h"
#include "rycore/automation/RyDialogVerdict.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/base/RyNearTexts.h"
#include "rycore/script/RyScriptEngine.h"
#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyActionMgr.h"

#include <QCoreApplication>
#include <QMultiMap>

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(RyActionRunner)
};

/// "RyJEAlignNodeAction" is called alignnode by who forgets the rest.
QString stem(const QString &className)
{
    QString text = className.toLower();
    for (const char *start : {"ryje", "ry"}) {
        if (text.startsWith(QLatin1String(start))) {
            text.remove(0, int(qstrlen(start)));
            break;
        }
    }
    if (text.endsWith(QLatin1String("action")))
        text.chop(6);
    return text;
}

/// What the log and the script engine get while this lives.
class LogWatch
{
public:
    LogWatch() : m_warnings(RyMessageLog::global().warnings().size()), m_failures(failures()) {}

    QStringList warnings() const { return RyMessageLog::global().warnings().mid(m_warnings); }
    /// Why a script within it failed, empty when none did.
    QString scriptFailure() const
    {
        return failures() > m_failures ? RyScriptEngine::current()->lastFailure() : QString();
    }

private:
    static int failures()
    {
        const RyScriptEngine *scripts = RyScriptEngine::current();
        return scripts ? scripts->failures() : 0;
    }
    int m_warnings;
    int m_failures;
};

void trigger(RyAction *action, const RyDialogDriver &driver, RyActionResult &result)
{
    const LogWatch log;
    action->trigger();
    QCoreApplication::sendPostedEvents();
    const RyDialogVerdict verdict = ryJudgeDialogs(driver);
    result.outcome = verdict.outcome;
    result.reason = verdict.reason;
    result.notes = verdict.notes + log.warnings();
    const QString failure = log.scriptFailure();
    if (!failure.isEmpty() && (result.outcome == RyOutcome::Ran || result.outcome == RyOutcome::Cancelled)) {
        result.outcome = RyOutcome::Refused;
        result.reason = failure;
        result.notes.removeAll(failure);
    }
    if (result.outcome == RyOutcome::RanWithUnusedFields)
        result.reason = Texts::tr("It ran, but: %1").arg(result.reason);
}

} // namespace

QVariantMap RyActionResult::toMap() const
{
    QVariantList boxes;
    for (const RyDialogRecord &record : dialogs)
        boxes.append(record.toMap());
    return {{QStringLiteral("ran"), ryHasRun(outcome)},
            {QStringLiteral("refused"), outcome == RyOutcome::Refused},
            {QStringLiteral("cancelled"), ryIsCancelled(outcome)},
            {QStringLiteral("reason"), reason},
            {QStringLiteral("notes"), notes},
            {QStringLiteral("boxes"), boxes}};
}

RyActionRunner::RyActionRunner(const RyActionMgr *manager) : m_manager(manager) {}

RyActionResult RyActionRunner::run(const QString &className, const RyDialogDriver &driver) const
{
    // Tools take a new selection by an event, which no loop may have delivered yet.
    QCoreApplication::sendPostedEvents();
    RyActionResult result;
    RyAction *action = m_manager ? m_manager->findAction(className) : nullptr;
    if (!action) {
        result.outcome = RyOutcome::WrongUse;
        result.reason = unknownReason(className);
    } else if (!action->isEnabled()) {
        result.outcome = RyOutcome::Refused;
        result.reason = action->unavailableReason();
        if (result.reason.isEmpty())
            result.reason = Texts::tr("The action \"%1\" is disabled for what is selected.").arg(action->text());
    } else {
        trigger(action, driver, result);
    }
    result.dialogs = driver.records();
    return result;
}

QStringList RyActionRunner::names() const
{
    QStringList names;
    if (m_manager) {
        for (const RyAction *action : m_manager->getActions())
            names.append(QString::fromLatin1(action->metaObject()->className()));
    }
    names.sort();
    return names;
}

QString RyActionRunner::unknownReason(const QString &className) const
{
    const QStringList near = nearNames(className);
    return near.isEmpty()
               ? Texts::tr("There is no action %1; there is %2.").arg(className, names().join(QStringLiteral(", ")))
               : Texts::tr("There is no action %1%2.").arg(className, ryDidYouMean(near, QString()));
}

QStringList RyActionRunner::nearNames(const QString &name) const
{
    QMultiMap<QString, QString> byStem;
    for (const QString &className : names())
        byStem.insert(stem(className), className);
    QStringList near;
    for (const QString &each : ryNearTexts(stem(name), byStem.uniqueKeys()))
        near += byStem.values(each);
    return near;
}
