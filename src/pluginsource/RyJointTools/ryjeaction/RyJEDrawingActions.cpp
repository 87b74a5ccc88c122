#include "pluginsource/RyJointTools/ryjeaction/RyJEDrawingActions.h"

RyJECustomColorsAction::RyJECustomColorsAction() : RyJEToolAction(staticMetaObject) {}
