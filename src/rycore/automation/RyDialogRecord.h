#pragma once

#include "rycore/automation/RyOutcome.h"

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
    QString answered; // the button; "accept" or "reject" for a dialog that has none for it
    /// What it says of the work: a message box that leaves no choice tells that it is refused, unless it came from a
    /// dialog that stayed open to be accepted again.
    RyOutcome outcome = RyOutcome::Ran;
    QString reason; // why it could not be accepted or answered

    /// Of one that has just opened.
    static RyDialogRecord of(const QDialog *dialog);

    /// "information", "warning", "critical", "question" or "none".
    QString iconName() const;
    /// A message box that leaves no choice.
    bool offersOnlyOk() const;
    /// It could not be accepted or answered.
    bool isRejected() const { return !reason.isEmpty(); }
    /// `text` with `informativeText`, without mark-up.
    QString plainText() const;
    /// Everything in one line, for logs.
    QString describe() const;
    /// For scripts and reports: kind ("box" or "dialog"), name, title, text, icon, buttons, default, escape, parent,
    /// answered, refused, cancelled, reason.
    QVariantMap toMap() const;
};
