#pragma once

#include "rycore/script/prototypes/RyScriptPrototype.h"
#include "rycore/skin/RyBoneBinding.h"

/// Bindings of bones in scripts: maps to read, null where there is none, and bulges to make.
class RyBoneBindingPrototype : public RyScriptPrototype
{
    Q_OBJECT
public:
    explicit RyBoneBindingPrototype(QObject *parent) : RyScriptPrototype(parent) {}

    Q_INVOKABLE RyBone *getBone() const;
    Q_INVOKABLE RyWeightMap *getWeights() const;
    Q_INVOKABLE RyWeightMap *getLocalWeights(int axis) const;
    Q_INVOKABLE RyWeightMap *getScaleWeights() const;

    /// Axis 0 (X), 1 (Y) or 2 (Z). Null where there is none.
    Q_INVOKABLE RyBulgeBinding *getBulge(int axis) const;
    /// That of the axis, made where there is none; throws for another number.
    Q_INVOKABLE RyBulgeBinding *addBulge(int axis) const;
    Q_INVOKABLE void removeBulge(int axis) const;
};
