#include "ryhost/commands/timeText.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QLocale>

QString timeTextOf(const QDateTime &time)
{
    const QLocale locale;
    // The locale of programs that have none says seconds even in its short form.
    const QString clock =
        locale.toString(time.time(), locale.timeFormat(QLocale::ShortFormat).remove(QStringLiteral(":ss")));
    return time.date() == QDate::currentDate() ? clock
                                               : QCoreApplication::translate("TimeText", "%1, %2")
                                                     .arg(locale.toString(time.date(), QLocale::ShortFormat), clock);
}
