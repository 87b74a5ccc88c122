#pragma once

#include <QScriptEngine>
#include <QScriptable>
#include <QVariant>

#include <vector>

struct RyVec3;

/// What scripts can do with the objects of one class, beside the slots of the class itself. The functions of a
/// prototype work on `this`. Mistakes are script errors.
class RyScriptPrototype : public QObject, protected QScriptable
{
    Q_OBJECT
protected:
    explicit RyScriptPrototype(QObject *parent) : QObject(parent) {}

    /// Null, with a script error, when `this` is of another class or gone.
    template<typename T>
    T *self() const
    {
        T *object = static_cast<T *>(T::staticMetaObject.cast(thisObject().toQObject()));
        if (!object)
            fail(tr("This is no %1, or it is gone.").arg(QLatin1String(T::staticMetaObject.className())));
        return object;
    }
    /// Throws.
    void fail(const QString &reason) const;

    template<typename T>
    QScriptValue toArray(const std::vector<T *> &objects) const
    {
        QScriptValue array = engine()->newArray(uint(objects.size()));
        for (size_t i = 0; i < objects.size(); ++i)
            array.setProperty(quint32(i), engine()->toScriptValue(objects[i]));
        return array;
    }
    /// An object with x, y and z.
    QScriptValue toObject(const RyVec3 &v) const;
    /// False, with a script error, when a coordinate is missing.
    bool toVector(const QScriptValue &value, RyVec3 *v) const;
};
