#include "rycore/automation/RyDialogRecord.h"

#include "rycore/automation/RyDialogButtons.h"

#include <QAbstractButton>
#include <QTextDocument>
#include <QTextDocumentFragment>

RyDialogRecord RyDialogRecord::of(const QDialog *dialog)
{
    RyDialogRecord record;
    record.className = QString::fromLatin1(dialog->metaObject()->className());
    record.objectName = dialog->objectName();
    record.title = dialog->windowTitle();
    record.parent = dialog->parentWidget();
    if (record.parent) {
        record.parentClass = QString::fromLatin1(record.parent->metaObject()->className());
        record.parentName = record.parent->objectName();
    }
    for (const QAbstractButton *button : RyDialogButtons::buttonsOf(dialog))
        record.buttons.append(RyDialogButtons::nameOf(button));
    if (const QAbstractButton *button = RyDialogButtons::defaultButton(dialog))
        record.defaultButton = RyDialogButtons::nameOf(button);
    if (const QAbstractButton *button = RyDialogButtons::escapeButton(dialog))
        record.escapeButton = RyDialogButtons::nameOf(button);
    if (const auto *box = qobject_cast<const QMessageBox *>(dialog)) {
        record.kind = MessageBox;
        record.text = box->text();
        record.informativeText = box->informativeText();
        record.icon = box->icon();
        if (record.offersOnlyOk())
            record.outcome = RyOutcome::Refused;
    }
    return record;
}

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
        {QStringLiteral("refused"), isRejected()},
        {QStringLiteral("cancelled"), ryIsCancelled(outcome)},
        {QStringLiteral("reason"), reason},
    };
}
