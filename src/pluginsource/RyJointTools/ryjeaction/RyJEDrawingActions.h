#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

// How the tool draws.

class RyJECustomColorsAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJECustomColorsAction();
};
