#include "rycore/base/registerErrorType.h"

#include "rycore/base/RyError.h"

#include <QScriptEngine>

static QScriptValue toScript(QScriptEngine *engine, const RyError &error)
{
    return QScriptValue(engine, error.code());
}

static void fromScript(const QScriptValue &value, RyError &error)
{
    error = RyError(value.toInt32());
}

void registerErrorType(QScriptEngine *engine)
{
    qScriptRegisterMetaType<RyError>(engine, toScript, fromScript);
}
