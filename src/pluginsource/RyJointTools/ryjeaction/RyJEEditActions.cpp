#include "pluginsource/RyJointTools/ryjeaction/RyJEEditActions.h"

RyJEConvertPropToFigureAction::RyJEConvertPropToFigureAction() : RyJEToolAction(staticMetaObject) {}

RyJEConvertFigureToPropAction::RyJEConvertFigureToPropAction() : RyJEToolAction(staticMetaObject) {}

RyJEMirrorAction::RyJEMirrorAction() : RyJEToolAction(staticMetaObject) {}

RyJEBakeRotationsAction::RyJEBakeRotationsAction() : RyJEToolAction(staticMetaObject) {}

RyJETransferWSRiggingAction::RyJETransferWSRiggingAction() : RyJEToolAction(staticMetaObject) {}
