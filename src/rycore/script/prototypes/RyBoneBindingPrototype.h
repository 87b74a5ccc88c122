#pragma once

#include "rycore/script/prototypes/RyScriptPrototype.h"
#include "rycore/skin/RyBoneBinding.h"

/// Bindings of bones in scripts, to read. Maps are null where there is none.
class RyBoneBindingPrototype : public RyScriptPrototype
{
    Q_OBJECT
public:
    explicit RyBoneBindingPrototype(QObject *parent) : RyScriptPrototype(parent) {}

    Q_INVOKABLE RyBone *getBone() const;
    Q_INVOKABLE RyWeightMap *getWeights() const;
    Q_INVOKABLE RyWeightMap *getLocalWeights(int axis) const;
    Q_INVOKABLE RyWeightMap *getScaleWeights() const;
};
