#pragma once

class QString;

// What must be selected for an action to run, said in a box titled "Selection Error".

void warnOfSelection(const QString &text);
/// Without the warning sign, over the main window.
void informOfSelection(const QString &text);
