#include "ryhost/commands/menuText.h"

#include <QAction>
#include <QSet>

QString menuTextOf(const QString &name)
{
    return QString(name).replace(QLatin1Char('&'), QStringLiteral("&&"));
}

QString menuTextOf(const QString &name, const QList<QAction *> &others)
{
    QSet<QChar> taken;
    for (const QAction *action : others)
        taken.insert(mnemonicOf(action->text()));
    for (int i = 0; i < name.size(); ++i) {
        if (name[i].isLetter() && !taken.contains(name[i].toLower()))
            return menuTextOf(name.left(i)) + QLatin1Char('&') + menuTextOf(name.mid(i));
    }
    return menuTextOf(name);
}

QChar mnemonicOf(const QString &text)
{
    for (int i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != QLatin1Char('&'))
            continue;
        ++i;
        if (text[i] != QLatin1Char('&'))
            return text[i].toLower();
    }
    return {};
}
