#include "rycore/automation/RyDialogRequests.h"

#include "rycore/automation/RyDialogFields.h"
#include "rycore/automation/RyDialogRecord.h"
#include "rycore/automation/RyWidgetFilling.h"

#include <QCoreApplication>
#include <QDialog>

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(RyDialogRequests)
};

/// What is wrong with it, empty when the field was filled.
QString fillField(QDialog *dialog, const QString &name, const QString &value)
{
    QString error;
    if (QWidget *widget = RyDialogFields::find(dialog, name)) {
        ryFillWidget(widget, value, &error);
        return error;
    }
    const QStringList fields = RyDialogFields::describe(dialog);
    return fields.isEmpty()
               ? Texts::tr("there is no field %1, and no other").arg(name)
               : Texts::tr("there is no field %1; there is %2").arg(name, fields.join(QStringLiteral(", ")));
}

} // namespace

void RyDialogRequests::addField(const QString &name, const QString &value)
{
    m_fields.push_back({name, value, false});
}

void RyDialogRequests::addAnswer(const QString &title, const QString &button)
{
    m_answers.push_back({title, button, false});
}

QStringList RyDialogRequests::fillFields(QDialog *dialog)
{
    QStringList errors;
    const QPointer<QDialog> guard(dialog);
    // To fill one may open another dialog, which uses fields of its own, and may add to them.
    for (size_t i = 0; i < m_fields.size() && guard && guard->isVisible(); ++i) {
        if (m_fields[i].used)
            continue;
        QString name = m_fields[i].name;
        const int slash = name.lastIndexOf(QLatin1Char('/'));
        if (slash > 0) {
            const QString window = name.left(slash);
            if (window != dialog->objectName() && window != dialog->windowTitle())
                continue;
            name = name.mid(slash + 1);
        }
        m_fields[i].used = true;
        const QString value = m_fields[i].value;
        const QString error = fillField(dialog, name, value);
        if (!error.isEmpty() && guard)
            errors.append(Texts::tr("In the dialog \"%1\": %2.").arg(dialog->windowTitle(), error));
    }
    return errors;
}

const QString *RyDialogRequests::takeAnswer(const RyDialogRecord &record)
{
    Answer *last = nullptr;
    for (Answer &answer : m_answers) {
        const bool fits = answer.title.compare(record.title, Qt::CaseInsensitive) == 0 ||
                          (!record.objectName.isEmpty() && answer.title == record.objectName);
        if (!fits)
            continue;
        last = &answer;
        if (!answer.used)
            break;
    }
    if (!last)
        return nullptr;
    last->used = true;
    return &last->button;
}

QStringList RyDialogRequests::unusedFields() const
{
    QStringList names;
    for (const Field &field : m_fields) {
        if (!field.used)
            names.append(field.name);
    }
    return names;
}

QStringList RyDialogRequests::unusedAnswers() const
{
    QStringList titles;
    for (const Answer &answer : m_answers) {
        if (!answer.used)
            titles.append(answer.title);
    }
    return titles;
}
