#pragma once

#include "rycore/automation/RyOutcome.h"

#include <QStringList>

class RyDialogDriver;

/// What the dialogs and message boxes that a driver took say of the work in which they opened.
struct RyDialogVerdict
{
    RyOutcome outcome = RyOutcome::Ran;
    QString reason;    // why it is not simply `Ran`
    QStringList notes; // what did no harm, such as an answer that no message box asked for
};

RyDialogVerdict ryJudgeDialogs(const RyDialogDriver &driver);
