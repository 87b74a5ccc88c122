#include "rycore/automation/RyScriptActions.h"

#include "rycore/automation/RyActionRunner.h"
#include "rycore/automation/RyDialogDriver.h"
#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyActionMgr.h"

#include <QScriptContext>
#include <QScriptEngine>
#include <QScriptValueIterator>

RyScriptActions::RyScriptActions(RyActionMgr *manager, QObject *parent) : QObject(parent), m_manager(manager) {}

QScriptValue RyScriptActions::run(const QString &className, const QScriptValue &fields,
                                  const QScriptValue &answers) const
{
    // Known only until another script function runs.
    QScriptContext *caller = context();
    QScriptEngine *scripts = engine();
    for (const QScriptValue &values : {fields, answers}) {
        if (values.isValid() && !values.isUndefined() && !values.isNull() && !values.isObject())
            return caller->throwError(
                tr("Actions.run takes a class name, an object of fields and an object of answers."));
    }
    RyDialogDriver driver;
    for (QScriptValueIterator field(fields); field.hasNext();) {
        field.next();
        driver.setField(field.name(), field.value().toString());
    }
    for (QScriptValueIterator answer(answers); answer.hasNext();) {
        answer.next();
        driver.setAnswer(answer.name(), answer.value().toString());
    }
    const RyActionResult result = RyActionRunner(m_manager).run(className, driver);
    if (ryIsWrongUse(result.outcome))
        return caller->throwError(result.reason);
    return scripts->toScriptValue(result.toMap());
}

QStringList RyScriptActions::names() const
{
    return RyActionRunner(m_manager).names();
}

bool RyScriptActions::isEnabled(const QString &className) const
{
    const RyAction *action = m_manager ? m_manager->findAction(className) : nullptr;
    if (!action)
        context()->throwError(RyActionRunner(m_manager).unknownReason(className));
    return action && action->isEnabled();
}
