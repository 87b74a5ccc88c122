#pragma once

#include <QList>
#include <QString>

class QAbstractButton;
class QDialog;

/// The buttons that end a dialog or a message box.
namespace RyDialogButtons {

/// In the order on the screen: of a message box all, of a dialog those in its button boxes, or else its push buttons.
QList<QAbstractButton *> buttonsOf(const QDialog *dialog);
/// What Enter presses, null when nothing.
QAbstractButton *defaultButton(const QDialog *dialog);
/// What Escape presses, null when it presses none.
QAbstractButton *escapeButton(const QDialog *dialog);
/// What a person presses to accept a dialog: its Ok button, or one of that kind; null when there is none.
QAbstractButton *acceptButton(const QDialog *dialog);
/// Whether that button gives up what the dialog or message box is for: its Cancel or Abort, beside others.
bool givesUp(const QDialog *dialog, QAbstractButton *button);
/// The standard name of a button that has a standard text ("Ok", "YesToAll"), otherwise its text without mnemonic.
QString nameOf(const QAbstractButton *button);
/// By its text without mnemonic or by standard name ("Yes", "YesToAll"), whatever the case; null when there is none.
QAbstractButton *findButton(const QDialog *dialog, const QString &name);

} // namespace RyDialogButtons
