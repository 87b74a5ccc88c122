#include "pluginsource/RyJointTools/ryjeaction/RyJEEditActions.h"

#include "pluginsource/RyJointTools/dialogs/RyGuardedDialog.h"
#include "pluginsource/RyJointTools/dialogs/RyJointEditorToolMirrorDlg.h"
#include "pluginsource/RyJointTools/ryjeaction/findJointEditorTool.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"

void RyJEMirrorAction::executeAction()
{
    if (RyJointEditorTool *tool = findJointEditorTool())
        RyGuardedDialog<RyJointEditorToolMirrorDlg>(tool, RyApp::getInterface()).exec();
}
