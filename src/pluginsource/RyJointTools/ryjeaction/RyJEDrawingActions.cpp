#include "pluginsource/RyJointTools/ryjeaction/RyJEDrawingActions.h"

#include "pluginsource/RyJointTools/dialogs/RyGuardedDialog.h"
#include "pluginsource/RyJointTools/dialogs/RyJointEditorToolDrawingOptionsDlg.h"
#include "pluginsource/RyJointTools/ryjeaction/findJointEditorTool.h"

RyJECustomColorsAction::RyJECustomColorsAction() : RyJEToolAction(staticMetaObject)
{
    setEnabled(true);
}

void RyJECustomColorsAction::executeAction()
{
    if (RyJointEditorTool *tool = findJointEditorTool())
        RyGuardedDialog<RyJointEditorToolDrawingOptionsDlg>(tool).exec();
}
