#include "pluginsource/RyJointTools/ryjeaction/RyJEToggleActions.h"

RyJETogglePropagateTranslationAction::RyJETogglePropagateTranslationAction() : RyJEToolAction(staticMetaObject) {}

RyJEToggleViewBoneCreationAction::RyJEToggleViewBoneCreationAction() : RyJEToolAction(staticMetaObject) {}

RyJEToggleAutoAlignNodeAction::RyJEToggleAutoAlignNodeAction() : RyJEToolAction(staticMetaObject) {}

RyJEToggleAutoSnapEndPointsAction::RyJEToggleAutoSnapEndPointsAction() : RyJEToolAction(staticMetaObject) {}
