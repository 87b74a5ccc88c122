#include "pluginsource/RyJointTools/ryjeaction/RyJEDeleteActions.h"

RyJEDeleteBoneAction::RyJEDeleteBoneAction() : RyJEToolAction(staticMetaObject) {}

RyJEDeleteUnusedBonesAction::RyJEDeleteUnusedBonesAction() : RyJEToolAction(staticMetaObject) {}
