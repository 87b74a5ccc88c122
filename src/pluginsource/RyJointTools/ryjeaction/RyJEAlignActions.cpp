#include "pluginsource/RyJointTools/ryjeaction/RyJEAlignActions.h"

RyJEAlignNodeAction::RyJEAlignNodeAction() : RyJEToolAction(staticMetaObject) {}

RyJEAlignAllBonesAction::RyJEAlignAllBonesAction() : RyJEToolAction(staticMetaObject) {}

RyJESnapCenterPointAction::RyJESnapCenterPointAction() : RyJEToolAction(staticMetaObject) {}

RyJESnapEndPointAction::RyJESnapEndPointAction() : RyJEToolAction(staticMetaObject) {}
