#include "pluginsource/RyJointTools/dialogs/runMessageBox.h"

#include "pluginsource/RyJointTools/dialogs/RyGuardedDialog.h"

QMessageBox::StandardButton runMessageBox(QMessageBox::Icon icon, QWidget *parent, const QString &title,
                                          const QString &text, QMessageBox::StandardButtons buttons,
                                          QMessageBox::StandardButton defaultButton, Qt::TextFormat format)
{
    RyGuardedDialog<QMessageBox> box(icon, title, text, buttons, parent);
    box->setTextFormat(format);
    box->setDefaultButton(defaultButton);
    box.exec();
    return box.get() ? box->standardButton(box->clickedButton()) : QMessageBox::NoButton;
}
