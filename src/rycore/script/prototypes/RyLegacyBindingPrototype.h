#pragma once

#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/script/prototypes/RyScriptPrototype.h"

/// Bindings of parametric figures in scripts.
class RyLegacyBindingPrototype : public RyScriptPrototype
{
    Q_OBJECT
public:
    explicit RyLegacyBindingPrototype(QObject *parent) : RyScriptPrototype(parent) {}

    Q_INVOKABLE int getNumJoints() const;
    Q_INVOKABLE QScriptValue getJoints() const;
    /// Null for a bone without one.
    Q_INVOKABLE RyLegacyJoint *findJoint(RyNode *bone) const;
};
