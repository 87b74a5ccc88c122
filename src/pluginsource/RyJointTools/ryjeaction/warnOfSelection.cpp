#include "pluginsource/RyJointTools/ryjeaction/warnOfSelection.h"

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"

#include <QMessageBox>

void warnOfSelection(const QString &text)
{
    QMessageBox::warning(RyApp::getDialogParent(), RyJEToolAction::tr("Selection Error"), text, QMessageBox::Ok);
}

void informOfSelection(const QString &text)
{
    QMessageBox::information(RyApp::getInterface(), RyJEToolAction::tr("Selection Error"), text, QMessageBox::Ok);
}
