#include "rycore/script/prototypes/RyValuesPrototype.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/node/RyNodeLookup.h"

#include <cmath>

QStringList RyValuesPrototype::getValueNames() const
{
    QStringList names;
    for (const RyFloatProperty *property : values())
        names.append(property->getName());
    return names;
}

double RyValuesPrototype::getValue(const QString &name) const
{
    const RyFloatProperty *property = value(name);
    return property ? double(property->getValue()) : 0.0;
}

void RyValuesPrototype::setValue(const QString &name, double value) const
{
    RyFloatProperty *property = this->value(name);
    if (!property || !isNumber(name, value))
        return;
    QString error;
    if (RyNodeLookup::canBecome(*property, float(value), &error))
        property->adjustValue(float(value));
    else
        fail(error);
}

double RyValuesPrototype::getDefaultValue(const QString &name) const
{
    const RyFloatProperty *property = value(name);
    return property ? double(property->getDefaultValue()) : 0.0;
}

bool RyValuesPrototype::isNumber(const QString &name, double value) const
{
    if (!std::isfinite(value))
        fail(tr("%1 takes a number.").arg(name));
    return std::isfinite(value);
}
