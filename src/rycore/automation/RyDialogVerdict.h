#pragma once

#include <QString>
#include <QStringList>

class RyDialogDriver;

/// What the dialogs and message boxes that a driver took say of the work in which they opened.
struct RyDialogVerdict
{
    bool refused = false;   // told why it does nothing, or its dialog could not be accepted
    bool cancelled = false; // a dialog or a box was answered by its Cancel, and nothing was refused
    bool wrongUse = false;  // fields and answers that do not fit what opened
    bool unused = false;    // of wrong use: fields that nothing used, while the work went on
    QString reason;         // of the first of these that holds
    QStringList notes;      // what did no harm, such as an answer that no message box asked for
};

RyDialogVerdict ryJudgeDialogs(const RyDialogDriver &driver);
