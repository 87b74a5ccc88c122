#include "rycore/ui/RyDialogRecord.h"

QString RyDialogRecord::iconName() const
{
    switch (icon) {
    case QMessageBox::Information:
        return QStringLiteral("information");
    case QMessageBox::Warning:
        return QStringLiteral("warning");
    case QMessageBox::Critical:
        return QStringLiteral("critical");
    case QMessageBox::Question:
        return QStringLiteral("question");
    case QMessageBox::NoIcon:
        break;
    }
    return QStringLiteral("none");
}

bool RyDialogRecord::offersOnlyOk() const
{
    return kind == MessageBox && buttons == QStringList(QStringLiteral("Ok"));
}

QString RyDialogRecord::describe() const
{
    QString line = title.isEmpty() ? objectName : title;
    if (!text.isEmpty())
        line += QStringLiteral(": ") + text;
    if (!informativeText.isEmpty())
        line += QLatin1Char(' ') + informativeText;
    line += QStringLiteral(" [%1]").arg(buttons.join(QStringLiteral(", ")));
    if (!answered.isEmpty())
        line += QStringLiteral(" -> ") + answered;
    if (!reason.isEmpty())
        line += QStringLiteral(" (%1)").arg(reason);
    return line;
}
