#include "pluginsource/RyJointTools/ryjeaction/RyJERotationOrderActions.h"

RyJERotationOrderXYZAction::RyJERotationOrderXYZAction() : RyJEToolAction(staticMetaObject) {}

RyJERotationOrderXZYAction::RyJERotationOrderXZYAction() : RyJEToolAction(staticMetaObject) {}

RyJERotationOrderYXZAction::RyJERotationOrderYXZAction() : RyJEToolAction(staticMetaObject) {}

RyJERotationOrderYZXAction::RyJERotationOrderYZXAction() : RyJEToolAction(staticMetaObject) {}

RyJERotationOrderZXYAction::RyJERotationOrderZXYAction() : RyJEToolAction(staticMetaObject) {}

RyJERotationOrderZYXAction::RyJERotationOrderZYXAction() : RyJEToolAction(staticMetaObject) {}
