#pragma once

#include <QMessageBox>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <QWidget>

class QDialog;

/// What a dialog or a message box was when it opened, and what became of it.
struct RyDialogRecord
{
    enum Kind { MessageBox, Dialog };
    Kind kind = Dialog;
    QString className;
    QString objectName;
    QString title;
    QString text;            // message boxes
    QString informativeText; // message boxes
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QStringList
        buttons; // as on the screen, without mnemonics; standard buttons by their names ("Ok", "Cancel", "YesToAll")
    QString defaultButton;
    QString escapeButton;
    QPointer<QWidget> parent;
    QString parentClass;
    QString parentName;
    QString answered;       // the button; "accept" or "reject" for a dialog that has none for it
    bool refused = false;   // the dialog could not be accepted
    bool cancelled = false; // what was pressed gives the work up
    bool corrects = false;  // the box came from a dialog that stayed open after it, to be accepted again
    QString reason;         // why not

    /// Of one that has just opened.
    static RyDialogRecord of(const QDialog *dialog);

    /// "information", "warning", "critical", "question" or "none".
    QString iconName() const;
    /// A message box that leaves no choice.
    bool offersOnlyOk() const;
    /// It tells why something is not done: only Ok, and no dialog that gets another chance.
    bool tellsOfRefusal() const { return offersOnlyOk() && !corrects; }
    /// `text` with `informativeText`, without mark-up.
    QString plainText() const;
    /// Everything in one line, for logs.
    QString describe() const;
    /// For scripts and reports: kind ("box" or "dialog"), name, title, text, icon, buttons, default, escape, parent,
    /// answered, refused, cancelled, reason.
    QVariantMap toMap() const;
};
