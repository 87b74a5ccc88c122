#pragma once

#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyBone.h"
#include "rycore/script/prototypes/RyScriptPrototype.h"
#include "rycore/skin/RySkinBinding.h"

/// Skeletons and figures in scripts, beside what they can do as nodes.
class RySkeletonPrototype : public RyScriptPrototype
{
    Q_OBJECT
public:
    explicit RySkeletonPrototype(QObject *parent) : RyScriptPrototype(parent) {}

    /// An array in the order of bone ids.
    Q_INVOKABLE QScriptValue getAllBones() const;
    Q_INVOKABLE RyBone *findBone(const QString &name) const;
    Q_INVOKABLE RyBone *findBoneByLabel(const QString &label) const;
    Q_INVOKABLE QString getUniqueBoneName(const QString &name) const;
    Q_INVOKABLE QString getUniqueBoneLabel(const QString &label) const;
    /// Null for a skeleton without skin.
    Q_INVOKABLE RySkinBinding *getSkinBinding() const;
    /// Null for a skeleton that is not parametric.
    Q_INVOKABLE RyLegacyBinding *getLegacyBinding() const;
};
