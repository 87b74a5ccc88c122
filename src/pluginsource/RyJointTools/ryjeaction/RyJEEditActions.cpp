#include "pluginsource/RyJointTools/ryjeaction/RyJEEditActions.h"

RyJEMirrorAction::RyJEMirrorAction() : RyJEToolAction(staticMetaObject) {}

RyJEBakeRotationsAction::RyJEBakeRotationsAction() : RyJEToolAction(staticMetaObject) {}

RyJETransferWSRiggingAction::RyJETransferWSRiggingAction() : RyJEToolAction(staticMetaObject) {}
