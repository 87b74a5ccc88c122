#pragma once

#include "rycore/parametric/RyLegacyJoint.h"
#include "rycore/script/prototypes/RyScriptPrototype.h"

/// Joints of parametric figures in scripts.
class RyLegacyJointPrototype : public RyScriptPrototype
{
    Q_OBJECT
public:
    explicit RyLegacyJointPrototype(QObject *parent) : RyScriptPrototype(parent) {}

    Q_INVOKABLE QString getName() const;
    /// Null where the bone is gone.
    Q_INVOKABLE RyBone *getBone() const;
    /// Empty for the whole mesh.
    Q_INVOKABLE QString getGroupName() const;
    Q_INVOKABLE int getNumParams() const;
    Q_INVOKABLE QScriptValue getParams() const;
    /// The first of that name; null without one.
    Q_INVOKABLE RyLegacyJointParam *findParam(const QString &name) const;
};
