#include "pluginsource/RyJointTools/ryjeaction/RyJEEditActions.h"

RyJEConvertPropToFigureAction::RyJEConvertPropToFigureAction() : RyJEToolAction(staticMetaObject) {}

RyJEConvertFigureToPropAction::RyJEConvertFigureToPropAction() : RyJEToolAction(staticMetaObject) {}

RyJERenameNodeAction::RyJERenameNodeAction() : RyJEToolAction(staticMetaObject) {}

RyJEReparentBoneAction::RyJEReparentBoneAction() : RyJEToolAction(staticMetaObject) {}

RyJEMirrorAction::RyJEMirrorAction() : RyJEToolAction(staticMetaObject) {}

RyJEBakeRotationsAction::RyJEBakeRotationsAction() : RyJEToolAction(staticMetaObject) {}

RyJETransferWSRiggingAction::RyJETransferWSRiggingAction() : RyJEToolAction(staticMetaObject) {}

RyJESelectedNodesAttributesEditAction::RyJESelectedNodesAttributesEditAction() : RyJEToolAction(staticMetaObject)
{
    setObjectName(QStringLiteral("RyJESelectedNodeAttributesEditAction"));
}
