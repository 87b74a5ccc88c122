#pragma once

#include "rycore/base/RyClassFactory.h"

#include <QCoreApplication>

#include <new>

/// Keeps how a script's wrapper owns the objects it makes (a QScriptEngine::ValueOwnership as a number).
template<typename T>
class RyTCustomClassFactory : public RyClassFactory
{
public:
    RyTCustomClassFactory(const QMetaObject *metaObject, const RyGuid &guid) : RyClassFactory(metaObject, guid) {}

    using RyClassFactory::createInstance;
    QObject *createInstance() override { return new (std::nothrow) T(); }
    QObject *createInstance(const QVariantList &) override { return createInstance(); }
    void registerClass(QScriptEngine *engine) override;

    int getScriptOwnership() const { return m_scriptOwnership; }
    void setScriptOwnership(int ownership) { m_scriptOwnership = ownership; }

private:
    static QScriptValue toScriptValue(QScriptEngine *engine, T *const &object);
    static void fromScriptValue(const QScriptValue &value, T *&object);
    static QScriptValue construct(QScriptContext *context, QScriptEngine *engine, void *factory);

    int m_scriptOwnership = QScriptEngine::QtOwnership;
};

template<typename T>
class RyTClassFactory : public RyTCustomClassFactory<T>
{
public:
    using RyTCustomClassFactory<T>::RyTCustomClassFactory;
};

template<typename T>
QScriptValue RyTCustomClassFactory<T>::toScriptValue(QScriptEngine *engine, T *const &object)
{
    QScriptValue value = engine->newQObject(object, QScriptEngine::QtOwnership);
    RyClassFactory::registerEnumsOnClass(engine, &T::staticMetaObject, value);
    return value;
}

template<typename T>
void RyTCustomClassFactory<T>::fromScriptValue(const QScriptValue &value, T *&object)
{
    object = static_cast<T *>(T::staticMetaObject.cast(value.toQObject()));
}

template<typename T>
QScriptValue RyTCustomClassFactory<T>::construct(QScriptContext *context, QScriptEngine *engine, void *factory)
{
    auto *self = static_cast<RyTCustomClassFactory<T> *>(factory);
    if (!self)
        return QScriptValue();
    QObject *object = self->createInstance(context);
    // What no script may delete belongs to the application.
    if (object && self->m_scriptOwnership == QScriptEngine::QtOwnership && !object->parent() && !object->isWidgetType())
        object->setParent(QCoreApplication::instance());
    QScriptValue value = engine->newQObject(object, QScriptEngine::ValueOwnership(self->m_scriptOwnership));
    RyClassFactory::registerEnumsOnClass(engine, self->metaObject(), value);
    return value;
}

template<typename T>
void RyTCustomClassFactory<T>::registerClass(QScriptEngine *engine)
{
    RyClassFactory::registerClass(engine);
    qScriptRegisterMetaType<T *>(engine, toScriptValue, fromScriptValue);
    const QScriptValue constructor = engine->newFunction(construct, static_cast<void *>(this));
    const QScriptValue metaObject = engine->newQMetaObject(this->metaObject(), constructor);
    engine->globalObject().setProperty(this->className(), metaObject, QScriptValue::KeepExistingFlags);
}
