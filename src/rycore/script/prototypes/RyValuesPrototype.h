#pragma once

#include "rycore/script/prototypes/RyScriptPrototype.h"

class RyFloatProperty;

/// Objects with values in scripts. Values go by the names of their properties.
class RyValuesPrototype : public RyScriptPrototype
{
    Q_OBJECT
public:
    Q_INVOKABLE QStringList getValueNames() const;
    Q_INVOKABLE double getValue(const QString &name) const;
    /// Throws, and changes nothing, where the limits of the value do not let it become `value`.
    Q_INVOKABLE void setValue(const QString &name, double value) const;
    Q_INVOKABLE double getDefaultValue(const QString &name) const;

protected:
    explicit RyValuesPrototype(QObject *parent) : RyScriptPrototype(parent) {}

    /// Those of `this`; none, with a script error, when it is of another class or gone.
    virtual std::vector<RyFloatProperty *> values() const = 0;
    /// The value of that name; null with a script error.
    virtual RyFloatProperty *value(const QString &name) const = 0;
    /// False, with a script error, when that is no number a value can be.
    bool isNumber(const QString &name, double value) const;
};
