#include "rycore/automation/RyScriptActions.h"

#include "rycore/automation/RyActionRunner.h"
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
    RyActionRunner runner(m_manager);
    for (const QScriptValue &values : {fields, answers}) {
        if (values.isValid() && !values.isUndefined() && !values.isNull() && !values.isObject())
            return caller->throwError(
                tr("Actions.run takes a class name, an object of fields and an object of answers."));
    }
    for (QScriptValueIterator field(fields); field.hasNext();) {
        field.next();
        runner.setField(field.name(), field.value().toString());
    }
    for (QScriptValueIterator answer(answers); answer.hasNext();) {
        answer.next();
        runner.setAnswer(answer.name(), answer.value().toString());
    }
    const RyActionResult result = runner.run(className);
    if (result.wrongUse)
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
