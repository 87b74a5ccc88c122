#pragma once

#include <QKeySequence>
#include <QString>

class QAction;
class QMenu;

/// Adds an entry; the icon is one of the program's, or none.
QAction *addMenuEntry(QMenu *menu, const char *objectName, const QString &text, const QString &tip,
                      const QKeySequence &keys = QKeySequence(), const char *icon = nullptr);
/// Enables or disables an entry; a disabled one says why.
void setMenuEntryAvailable(QAction *action, bool onOff, const QString &reason, const QString &tip);
