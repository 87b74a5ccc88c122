#include "rycore/automation/RyDialogDriver.h"

#include "rycore/automation/RyDialogButtons.h"
#include "rycore/automation/RyDialogFields.h"
#include "rycore/script/RyScriptEngine.h"
#include "rycore/ui/RyScriptForm.h"

#include <QAbstractButton>
#include <QApplication>
#include <QProgressDialog>
#include <QTimer>

#include <algorithm>

namespace {

constexpr int Attempts = 3; // to accept a dialog that stays open

std::vector<RyDialogDriver *> drivers;

/// What a form of a script says of its values.
QString messageOf(const QDialog *dialog)
{
    const auto *form = qobject_cast<const RyScriptForm *>(dialog);
    return form ? form->getMessage() : QString();
}

} // namespace

RyDialogDriver::RyDialogDriver(QObject *parent) : QObject(parent)
{
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && window->isModal())
            m_left.emplace_back(window);
    }
    drivers.push_back(this);
    startLevel(0);
}

RyDialogDriver::~RyDialogDriver()
{
    drivers.erase(std::remove(drivers.begin(), drivers.end(), this), drivers.end());
}

void RyDialogDriver::setField(const QString &name, const QString &value)
{
    m_requests.addField(name, value);
}

void RyDialogDriver::setAnswer(const QString &title, const QString &button)
{
    m_requests.addAnswer(title, button);
}

std::vector<RyDialogRecord> RyDialogDriver::boxes() const
{
    std::vector<RyDialogRecord> boxes;
    std::copy_if(m_records.begin(), m_records.end(), std::back_inserter(boxes),
                 [](const RyDialogRecord &record) { return record.kind == RyDialogRecord::MessageBox; });
    return boxes;
}

void RyDialogDriver::clear()
{
    m_requests = {};
    m_repeats = {};
    m_records.clear();
    m_errors.clear();
}

void RyDialogDriver::startLevel(size_t level)
{
    // A timer does not fire within its own handling, so a dialog in a dialog needs a timer of its own.
    if (m_levels.size() <= level) {
        m_levels.push_back(std::make_unique<QTimer>());
        connect(m_levels.back().get(), &QTimer::timeout, this, [this, level] { take(level); });
    }
    m_levels[level]->start(0);
}

bool RyDialogDriver::isBusy(const QWidget *window) const
{
    const auto isWindow = [&](const QPointer<QWidget> &other) { return other == window; };
    return std::any_of(m_left.begin(), m_left.end(), isWindow) || std::any_of(m_busy.begin(), m_busy.end(), isWindow);
}

void RyDialogDriver::take(size_t level)
{
    auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
    if (drivers.back() != this || !dialog || !dialog->isVisible() || isBusy(dialog) ||
        qobject_cast<QProgressDialog *>(dialog))
        return;
    startLevel(level + 1);
    m_busy.emplace_back(dialog);
    const QPointer<QDialog> guard(dialog);
    const size_t record = m_records.size();
    m_records.push_back(RyDialogRecord::of(dialog));
    const bool loops = m_repeats.note(dialog, m_records[record]);
    emit opened(dialog);
    if (guard && guard->isVisible() && m_records.size() > record) {
        if (loops)
            leaveLoop(dialog, record);
        else if (auto *box = qobject_cast<QMessageBox *>(dialog))
            answerBox(box, record);
        else
            acceptDialog(dialog, record);
    }
    m_busy.pop_back();
    m_levels[level + 1]->stop();
}

void RyDialogDriver::answerBox(QMessageBox *box, size_t record)
{
    QAbstractButton *button = nullptr;
    if (const QString *answer = m_requests.takeAnswer(m_records[record])) {
        button = RyDialogButtons::findButton(box, *answer);
        if (!button) {
            const RyDialogRecord &r = m_records[record];
            m_errors.append(tr("The message box \"%1\" has no button \"%2\"; it has %3.")
                                .arg(r.title, *answer, r.buttons.join(QStringLiteral(", "))));
            reject(box, record, m_errors.last());
            return;
        }
    }
    if (!button)
        button = RyDialogButtons::defaultButton(box);
    if (!button)
        button = RyDialogButtons::escapeButton(box);
    if (!button) {
        reject(box, record, tr("it has no button to answer with"));
        return;
    }
    m_records[record].answered = RyDialogButtons::nameOf(button);
    if (RyDialogButtons::givesUp(box, button))
        m_records[record].outcome = RyOutcome::Cancelled;
    button->click();
}

void RyDialogDriver::acceptDialog(QDialog *dialog, size_t record)
{
    const QPointer<QDialog> guard(dialog);
    const QStringList errors = m_requests.fillFields(dialog);
    m_errors += errors;
    if (!guard || !guard->isVisible())
        return;
    if (!errors.isEmpty()) {
        reject(dialog, record, tr("its fields could not be filled"));
        return;
    }
    QAbstractButton *button = RyDialogButtons::acceptButton(dialog);
    if (const QString *answer = m_requests.takeAnswer(m_records[record])) {
        button = RyDialogButtons::findButton(dialog, *answer);
        if (!button) {
            m_errors.append(
                tr("The dialog \"%1\" has no button \"%2\"; it has %3.")
                    .arg(m_records[record].title, *answer, m_records[record].buttons.join(QStringLiteral(", "))));
            reject(dialog, record, m_errors.last());
            return;
        }
    }
    const QPointer<QAbstractButton> pressed(button);
    QString complaint = tr("it did not take what its fields hold");
    m_records[record].answered = button ? RyDialogButtons::nameOf(button) : QStringLiteral("accept");
    if (RyDialogButtons::givesUp(dialog, button))
        m_records[record].outcome = RyOutcome::Cancelled;
    for (int attempt = 0; attempt < Attempts && guard && guard->isVisible(); ++attempt) {
        if (button && (!pressed || !pressed->isEnabled())) {
            const QStringList fields = RyDialogFields::describe(dialog);
            QString pressing = tr("its button %1 is disabled").arg(m_records[record].answered);
            if (const QString why = messageOf(dialog); !why.isEmpty())
                pressing += tr(" (%1)").arg(why);
            reject(dialog, record,
                   fields.isEmpty() ? pressing
                                    : tr("%1; its fields are %2").arg(pressing, fields.join(QStringLiteral(", "))));
            return;
        }
        const size_t first = m_records.size();
        button ? button->click() : dialog->accept();
        if (!guard || !guard->isVisible())
            return;
        for (size_t i = first; i < m_records.size(); ++i) {
            RyDialogRecord &inner = m_records[i];
            if (!inner.isRejected())
                inner.outcome = RyOutcome::Ran;
            if (inner.offersOnlyOk() && !inner.plainText().isEmpty())
                complaint = inner.plainText();
        }
    }
    if (!guard || !guard->isVisible())
        return;
    const QString why = messageOf(dialog);
    reject(dialog, record, why.isEmpty() ? complaint : why);
}

void RyDialogDriver::leaveLoop(QDialog *dialog, size_t record)
{
    const QString reason = tr("it opened again and again");
    // A script that asks in a loop does not notice that nobody is there.
    RyScriptEngine *scripts = RyScriptEngine::current();
    if (scripts && qobject_cast<const RyScriptForm *>(dialog))
        scripts->stop(tr("The form \"%1\" was not accepted: %2.").arg(m_records[record].title, reason));
    reject(dialog, record, reason);
}

void RyDialogDriver::reject(QDialog *dialog, size_t record, const QString &reason)
{
    m_records[record].outcome = RyOutcome::Refused;
    m_records[record].reason = reason;
    const QPointer<QDialog> guard(dialog);
    const QPointer<QAbstractButton> button(RyDialogButtons::escapeButton(dialog));
    m_records[record].answered = button ? RyDialogButtons::nameOf(button) : QStringLiteral("reject");
    if (button)
        button->click();
    if (guard && guard->isVisible())
        guard->reject();
    if (guard && guard->isVisible())
        guard->done(QDialog::Rejected);
}
