#include "pluginsource/RyJointTools/ryjeaction/RyJERiggingActions.h"

RyJEMemorizeFigureRiggingPropertiesAction::RyJEMemorizeFigureRiggingPropertiesAction()
    : RyJEToolAction(staticMetaObject)
{}

RyJEMemorizeNodeRiggingPropertiesAction::RyJEMemorizeNodeRiggingPropertiesAction() : RyJEToolAction(staticMetaObject) {}

RyJERestoreFigureRiggingPropertiesAction::RyJERestoreFigureRiggingPropertiesAction() : RyJEToolAction(staticMetaObject)
{}

RyJERestoreNodeRiggingPropertiesAction::RyJERestoreNodeRiggingPropertiesAction() : RyJEToolAction(staticMetaObject) {}
