#include "rycore/automation/RyDialogRecord.h"

#include <QTextDocument>
#include <QTextDocumentFragment>

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

QString RyDialogRecord::plainText() const
{
    QString plain = informativeText.isEmpty() ? text : text + QLatin1Char('\n') + informativeText;
    if (Qt::mightBeRichText(plain))
        plain = QTextDocumentFragment::fromHtml(plain).toPlainText();
    return plain.simplified();
}

QString RyDialogRecord::describe() const
{
    QString line = title.isEmpty() ? objectName : title;
    if (!text.isEmpty())
        line += QStringLiteral(": ") + plainText();
    line += QStringLiteral(" [%1]").arg(buttons.join(QStringLiteral(" | ")));
    if (!answered.isEmpty())
        line += QStringLiteral(" -> ") + answered;
    if (!reason.isEmpty())
        line += QStringLiteral(" (%1)").arg(reason);
    return line;
}

QVariantMap RyDialogRecord::toMap() const
{
    return {
        {QStringLiteral("kind"), kind == MessageBox ? QStringLiteral("box") : QStringLiteral("dialog")},
        {QStringLiteral("name"), objectName},
        {QStringLiteral("title"), title},
        {QStringLiteral("text"), plainText()},
        {QStringLiteral("icon"), iconName()},
        {QStringLiteral("buttons"), buttons},
        {QStringLiteral("default"), defaultButton},
        {QStringLiteral("escape"), escapeButton},
        {QStringLiteral("parent"), parentName.isEmpty() ? parentClass : parentName},
        {QStringLiteral("answered"), answered},
        {QStringLiteral("refused"), refused},
        {QStringLiteral("cancelled"), cancelled},
        {QStringLiteral("reason"), reason},
    };
}
