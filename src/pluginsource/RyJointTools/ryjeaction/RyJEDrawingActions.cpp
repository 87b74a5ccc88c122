#include "pluginsource/RyJointTools/ryjeaction/RyJEDrawingActions.h"

#include "pluginsource/RyJointTools/dialogs/RyJointEditorToolDrawingOptionsDlg.h"
#include "pluginsource/RyJointTools/ryjeaction/findJointEditorTool.h"

#include <QPointer>

RyJECustomColorsAction::RyJECustomColorsAction() : RyJEToolAction(staticMetaObject)
{
    setEnabled(true);
}

void RyJECustomColorsAction::executeAction()
{
    RyJointEditorTool *tool = findJointEditorTool();
    if (!tool)
        return;
    // The main window that owns the dialog may go while it is open.
    const QPointer<RyJointEditorToolDrawingOptionsDlg> dialog = new RyJointEditorToolDrawingOptionsDlg(tool);
    dialog->exec();
    delete dialog;
}
