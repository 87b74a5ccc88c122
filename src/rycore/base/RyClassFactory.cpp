#include "rycore/base/RyClassFactory.h"

#include "rycore/base/RyError.h"

#include <QMetaEnum>

static QScriptValue errorToScript(QScriptEngine *engine, const RyError &error)
{
    return QScriptValue(engine, error.code());
}

static void errorFromScript(const QScriptValue &value, RyError &error)
{
    error = RyError(value.toInt32());
}

RyClassFactory::RyClassFactory(const QMetaObject *metaObject, const RyGuid &guid)
    : m_metaObject(metaObject), m_guid(guid)
{}

RyClassFactory::~RyClassFactory() = default;

QObject *RyClassFactory::createInstance(QScriptContext *)
{
    return createInstance();
}

void RyClassFactory::registerClass(QScriptEngine *engine)
{
    if (engine)
        qScriptRegisterMetaType<RyError>(engine, errorToScript, errorFromScript);
}

QString RyClassFactory::className() const
{
    return QString::fromLatin1(m_metaObject->className());
}

void RyClassFactory::registerEnumsOnClass(QScriptEngine *engine, const QMetaObject *metaObject, QScriptValue &value)
{
    if (!metaObject || !value.isObject())
        return;
    for (int i = 0; i < metaObject->enumeratorCount(); ++i) {
        const QMetaEnum enumerator = metaObject->enumerator(i);
        for (int key = 0; key < enumerator.keyCount(); ++key) {
            value.setProperty(QString::fromLatin1(enumerator.key(key)), QScriptValue(engine, enumerator.value(key)),
                              QScriptValue::ReadOnly | QScriptValue::Undeletable);
        }
    }
}
