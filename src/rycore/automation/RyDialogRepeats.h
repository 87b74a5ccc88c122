#pragma once

#include "rycore/automation/RyDialogRecord.h"

#include <QDialog>

#include <vector>

/// Tells when whoever opens dialogs does so again and again, in a loop that does not take no for an answer.
class RyDialogRepeats
{
public:
    /// Called for each that opens. Whether it, or the like of it, has come too often.
    bool note(QDialog *dialog, const RyDialogRecord &record);

private:
    struct Opening
    {
        QPointer<QDialog> dialog;
        int times;
    };
    std::vector<Opening> m_openings;
    RyDialogRecord m_last;
    int m_sameInARow = 0;
};
