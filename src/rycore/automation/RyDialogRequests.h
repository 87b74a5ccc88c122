#pragma once

#include <QString>
#include <QStringList>

#include <vector>

class QDialog;
struct RyDialogRecord;

/// Fields to fill and buttons to press in dialogs to come, each with whether it was used.
class RyDialogRequests
{
public:
    /// See `RyDialogDriver`.
    void addField(const QString &name, const QString &value);
    void addAnswer(const QString &title, const QString &button);

    /// Fills what belongs to this dialog, as long as it stays open. Returns what does not fit.
    QStringList fillFields(QDialog *dialog);
    /// The button that is asked for, which counts as used; null where nobody asks.
    const QString *takeAnswer(const RyDialogRecord &record);

    QStringList unusedFields() const;
    QStringList unusedAnswers() const;

private:
    struct Field
    {
        QString name, value;
        bool used;
    };
    struct Answer
    {
        QString title, button;
        bool used;
    };
    std::vector<Field> m_fields;
    std::vector<Answer> m_answers;
};
