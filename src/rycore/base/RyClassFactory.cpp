#include "rycore/base/RyClassFactory.h"

#include "rycore/base/registerErrorType.h"

#include <QMetaEnum>

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
        registerErrorType(engine);
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
