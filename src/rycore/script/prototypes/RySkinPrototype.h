#pragma once

#include "rycore/script/prototypes/RyScriptPrototype.h"
#include "rycore/skin/RySkinBinding.h"

/// Skins in scripts, to read.
class RySkinPrototype : public RyScriptPrototype
{
    Q_OBJECT
public:
    explicit RySkinPrototype(QObject *parent) : RyScriptPrototype(parent) {}

    Q_INVOKABLE int getNumBoneBindings() const;
    Q_INVOKABLE QScriptValue getBoneBindings() const;
    Q_INVOKABLE RyBoneBinding *findBoneBinding(RyNode *bone) const;
    Q_INVOKABLE bool hasLocalMaps() const;
    Q_INVOKABLE bool hasGeneralMaps() const;
};
