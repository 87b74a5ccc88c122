#pragma once

#include "rycore/automation/RyDialogRecord.h"
#include "rycore/automation/RyDialogRepeats.h"
#include "rycore/automation/RyDialogRequests.h"

#include <QDialog>
#include <QObject>

#include <memory>
#include <vector>

class QTimer;

/// While one lives it takes every modal dialog and message box that opens, so that actions run without a person.
///
/// A message box is answered by the rule for its title, otherwise by its default button, otherwise by the one that
/// Escape presses. A dialog gets its fields filled and is accepted. One that stays open, because it corrected what was
/// filled in, is accepted again a few times and then rejected; so is one whose fields do not fit, untouched by
/// acceptance. What a dialog opens in turn is taken too. What opens again and again is rejected, and a script whose
/// form does so is stopped. Dialogs that were open before are left alone, and so are progress dialogs. Where several
/// drivers live, the latest works.
class RyDialogDriver : public QObject
{
    Q_OBJECT
public:
    explicit RyDialogDriver(QObject *parent = nullptr);
    ~RyDialogDriver() override;

    /// Fills a widget before its dialog is accepted, in the order of these calls, once. `name` is an object name;
    /// "NAME#2" is the second widget of that name. It belongs to the next dialog, which is refused when it has no such
    /// widget; "DIALOG/NAME" waits for the dialog of that object name or title. What values look like: see
    /// `ryFillWidget`.
    void setField(const QString &name, const QString &value);
    /// Presses that button, by its text or standard name, in the message box or dialog of that title. Several rules of
    /// one title are used one after the other, the last of them from then on. Without such a button: an error, and
    /// Escape.
    void setAnswer(const QString &title, const QString &button);

    /// Everything that opened, in that order.
    const std::vector<RyDialogRecord> &records() const { return m_records; }
    /// The message boxes among them.
    std::vector<RyDialogRecord> boxes() const;
    /// What was wrong with fields and answers: unknown names, values that do not fit, missing buttons.
    const QStringList &errors() const { return m_errors; }
    /// Fields that no dialog has used.
    QStringList unusedFields() const { return m_requests.unusedFields(); }
    QStringList unusedAnswers() const { return m_requests.unusedAnswers(); }
    /// Forgets records, errors, fields and answers.
    void clear();

signals:
    /// A dialog or message box has opened and nothing was done with it yet.
    void opened(QDialog *dialog);

private:
    void startLevel(size_t level);
    void take(size_t level);
    bool isBusy(const QWidget *window) const;
    void answerBox(QMessageBox *box, size_t record);
    void acceptDialog(QDialog *dialog, size_t record);
    /// A loop that asks the same again and again is left by Escape.
    void leaveLoop(QDialog *dialog, size_t record);
    void reject(QDialog *dialog, size_t record, const QString &reason);

    std::vector<std::unique_ptr<QTimer>> m_levels; // one for each event loop within a dialog's own handling
    std::vector<QPointer<QWidget>> m_left;         // open before this driver
    std::vector<QPointer<QWidget>> m_busy;
    RyDialogRequests m_requests;
    RyDialogRepeats m_repeats;
    std::vector<RyDialogRecord> m_records;
    QStringList m_errors;
};
