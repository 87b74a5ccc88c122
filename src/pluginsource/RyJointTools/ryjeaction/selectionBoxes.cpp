#include "pluginsource/RyJointTools/ryjeaction/selectionBoxes.h"

#include "pluginsource/RyJointTools/dialogs/runMessageBox.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"

static bool showBox(QMessageBox::Icon icon, const QString &text, QWidget *parent)
{
    return runMessageBox(icon, parent, RyJEToolAction::tr("Selection Error"), text, QMessageBox::Ok, QMessageBox::Ok) ==
           QMessageBox::Ok;
}

void warnOfSelection(const QString &text)
{
    warnOfSelection(text, RyApp::getDialogParent());
}

bool warnOfSelection(const QString &text, QWidget *parent)
{
    return showBox(QMessageBox::Warning, text, parent);
}

void informOfSelection(const QString &text)
{
    showBox(QMessageBox::Information, text, RyApp::getInterface());
}
