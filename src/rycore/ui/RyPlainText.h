#pragma once

#include <QString>

/// The text of a menu entry, button or tab as a person reads it: without the mark of its letter, be it "&Open" or
/// "Open (&O)", and without the key behind a tab; "&&" is "&".
QString ryPlainText(const QString &text);
