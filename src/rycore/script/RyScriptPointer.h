#pragma once

#include <QScriptEngine>

/// Lets pointers to `T` travel between the host and scripts. An object of another class becomes null. One object has
/// one wrapper, so that scripts can compare; it shows neither children nor deleteLater.
template<typename T>
void ryRegisterScriptPointer(QScriptEngine *engine)
{
    qScriptRegisterMetaType<T *>(
        engine,
        [](QScriptEngine *target, T *const &object) {
            return target->newQObject(object, QScriptEngine::QtOwnership,
                                      QScriptEngine::PreferExistingWrapperObject | QScriptEngine::ExcludeChildObjects |
                                          QScriptEngine::ExcludeDeleteLater);
        },
        [](const QScriptValue &value, T *&object) {
            object = static_cast<T *>(T::staticMetaObject.cast(value.toQObject()));
        });
}
