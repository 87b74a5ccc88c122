#include "rycore/script/prototypes/RyScriptPrototype.h"

#include "rycore/math/RyVec3.h"

#include <QScriptContext>

#include <cmath>

void RyScriptPrototype::fail(const QString &reason) const
{
    context()->throwError(reason);
}

QScriptValue RyScriptPrototype::toObject(const RyVec3 &v) const
{
    QScriptValue object = engine()->newObject();
    object.setProperty(QStringLiteral("x"), double(v.x));
    object.setProperty(QStringLiteral("y"), double(v.y));
    object.setProperty(QStringLiteral("z"), double(v.z));
    return object;
}

bool RyScriptPrototype::toVector(const QScriptValue &value, RyVec3 *v) const
{
    double numbers[3];
    const QString names[] = {QStringLiteral("x"), QStringLiteral("y"), QStringLiteral("z")};
    for (int i = 0; i < 3; ++i) {
        const QScriptValue number = value.property(names[i]);
        numbers[i] = number.toNumber();
        if (!number.isNumber() || !std::isfinite(numbers[i])) {
            fail(tr("A place is an object with the numbers x, y and z, such as {x: 0, y: 100, z: 0}."));
            return false;
        }
    }
    *v = RyVec3(float(numbers[0]), float(numbers[1]), float(numbers[2]));
    return true;
}
