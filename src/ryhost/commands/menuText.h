#pragma once

#include <QList>
#include <QString>

class QAction;

// Texts of menu entries mark the letter that chooses them with "&"; `ryPlainText` is the way back.

/// A name, such as that of a file, as the text of an entry: no letter of it is marked.
QString menuTextOf(const QString &name);
/// As above, with the first letter marked that none of the other entries uses.
QString menuTextOf(const QString &name, const QList<QAction *> &others);
/// The marked letter in lower case, a null character where there is none.
QChar mnemonicOf(const QString &text);
