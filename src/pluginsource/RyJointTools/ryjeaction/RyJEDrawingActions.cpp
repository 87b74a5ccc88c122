#include "pluginsource/RyJointTools/ryjeaction/RyJEDrawingActions.h"

#include "pluginsource/RyJointTools/dialogs/RyGuardedDialog.h"
#include "pluginsource/RyJointTools/dialogs/RyJointEditorToolDrawingOptionsDlg.h"
#include "pluginsource/RyJointTools/ryjeaction/findJointEditorTool.h"

void RyJECustomColorsAction::executeAction()
{
    if (RyJointEditorTool *tool = findJointEditorTool())
        RyGuardedDialog<RyJointEditorToolDrawingOptionsDlg>(tool).exec();
}
