#include "pluginsource/RyJointTools/ryjeaction/warnOfSelection.h"

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

#include "rycore/app/RyApp.h"

#include <QMessageBox>

void warnOfSelection(const QString &text)
{
    QMessageBox::warning(RyApp::getDialogParent(), RyJEToolAction::tr("Selection Error"), text, QMessageBox::Ok);
}
