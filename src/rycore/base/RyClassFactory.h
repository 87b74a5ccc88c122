#pragma once

#include "rycore/base/RyGuid.h"

#include <QMetaObject>
#include <QScriptEngine>
#include <QVariantList>

class QScriptContext;

/// Makes objects of one class by name and registers the class with a script engine. The order of the virtual
/// functions is part of the interface between host and plug-in.
class RyClassFactory
{
public:
    RyClassFactory(const QMetaObject *metaObject, const RyGuid &guid);
    virtual ~RyClassFactory();
    /// Forwards to the argument-less one.
    virtual QObject *createInstance(QScriptContext *context);
    /// A new object, null when the allocation fails.
    virtual QObject *createInstance() = 0;
    /// Returns what the argument-less one returns; the arguments are ignored.
    virtual QObject *createInstance(const QVariantList &arguments) = 0;
    virtual void registerClass(QScriptEngine *engine);

    QString className() const;
    const QMetaObject *metaObject() const { return m_metaObject; }
    const RyGuid &getGuid() const { return m_guid; }

    /// Makes every enumerator of every Q_ENUM of the class a read-only number property of `value`.
    static void registerEnumsOnClass(QScriptEngine *engine, const QMetaObject *metaObject, QScriptValue &value);

private:
    const QMetaObject *m_metaObject;
    RyGuid m_guid;
};
