#pragma once

class QLineEdit;

/// Gives a field a button that clears it. It is made with the first text, and not shown before: to find its picture a
/// style may look through all icon themes.
void giveClearButton(QLineEdit *field);
