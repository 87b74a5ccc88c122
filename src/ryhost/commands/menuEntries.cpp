#include "ryhost/commands/menuEntries.h"

#include "ryhost/look/HostIcons.h"

#include <QMenu>
#include <QVariant>

QAction *addMenuEntry(QMenu *menu, const char *objectName, const QString &text, const QString &tip,
                      const QKeySequence &keys, const char *icon)
{
    QAction *action = menu->addAction(text);
    action->setObjectName(QString::fromLatin1(objectName));
    action->setShortcut(keys);
    action->setStatusTip(tip);
    if (icon)
        action->setIcon(HostIcons::icon(QString::fromLatin1(icon)));
    return action;
}

void setMenuEntryAvailable(QAction *action, bool onOff, const QString &reason, const QString &tip)
{
    action->setEnabled(onOff);
    action->setProperty("unavailableReason", onOff ? QString() : reason);
    action->setStatusTip(onOff ? tip : reason);
    action->setToolTip(onOff ? tip : reason);
}
