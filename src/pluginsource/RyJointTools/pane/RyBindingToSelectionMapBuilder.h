#pragma once

#include "rycore/base/RyBase.h"

/// Makes selection maps from the bone bindings of figures. Scriptable.
class RyBindingToSelectionMapBuilder : public RyBase
{
    Q_OBJECT
public:
    RyBindingToSelectionMapBuilder();
};
