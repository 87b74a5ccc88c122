#pragma once

#include "rycore/ui/RyBasicDialog.h"

#include <QScriptable>
#include <QStringList>
#include <QVariant>

#include <vector>

class QGridLayout;
class QLabel;
class QLineEdit;

/// A dialog of a few fields, for scripts:
///
///     var form = new RyScriptForm("Rename Node");
///     form.addText("name", "Name :", node.getName(), "name");
///     form.accepting.connect(function() { if (isTaken(form.value("name"))) form.setMessage("The name is taken."); });
///     if (form.exec()) node.setName(form.value("name"));
///
/// The fields have their keys as object names. OK is off while a field holds what its rule does not allow, or nothing;
/// the form says why. It stays open, with the error, when a function connected to `accepting` throws. Mistakes of the
/// script (a key used twice, an unknown rule or key) are script errors.
class RyScriptForm : public RyBasicDialog, protected QScriptable
{
    Q_OBJECT
public:
    explicit RyScriptForm(QWidget *parent = nullptr);
    ~RyScriptForm() override;

    Q_INVOKABLE void setTitle(const QString &title) { setWindowTitle(title); }
    /// `rule` is "name" or "label" for what nodes may be called, or empty for any text.
    Q_INVOKABLE bool addText(const QString &key, const QString &label, const QString &text = QString(),
                             const QString &rule = QString());
    /// `current` is the index of the item that is chosen at first.
    Q_INVOKABLE bool addChoice(const QString &key, const QString &label, const QStringList &items, int current = 0);
    Q_INVOKABLE bool addCheck(const QString &key, const QString &label, bool isChecked = false);

    /// The text of a field (without blanks at the ends where it has a rule), the text of the chosen item, true or
    /// false. Invalid for an unknown key.
    Q_INVOKABLE QVariant value(const QString &key) const;
    Q_INVOKABLE bool setValue(const QString &key, const QVariant &value);
    /// Shows why the values were not accepted, until the next edit or try. Called while `accepting` is emitted it keeps
    /// the form open. An empty text takes the message away.
    Q_INVOKABLE void setMessage(const QString &text);
    Q_INVOKABLE QString getMessage() const;

signals:
    /// OK was pressed and all rules are kept.
    void accepting();

private:
    class Validator;
    struct Rule
    {
        QLineEdit *field;
        QString explanation;
    };

    bool addRow(const QString &key, const QString &label, QWidget *field);
    bool refuse(const QString &reason) const;
    QWidget *findField(const QString &key) const;
    const Rule *findRule(const QWidget *field) const;
    void checkRules();

    QGridLayout *m_grid;
    QWidget *m_messageRow;
    QLabel *m_message;
    std::vector<QWidget *> m_fields; // their object names are the keys
    std::vector<Rule> m_rules;
    bool m_isAccepting = false;
};
