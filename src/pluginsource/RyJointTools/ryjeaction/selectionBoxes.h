#pragma once

class QString;
class QWidget;

// What must be selected for an action to run, said in a modal box titled "Selection Error" with one button. Nodes and
// windows may be gone when it is closed.

/// With the warning sign, over whatever dialog is open, else the main window.
void warnOfSelection(const QString &text);
/// With the warning sign, over that widget. False when nobody answered: the box went with its window.
bool warnOfSelection(const QString &text, QWidget *parent);
/// With the information sign, over the main window.
void informOfSelection(const QString &text);
