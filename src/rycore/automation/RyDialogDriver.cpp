#include "rycore/automation/RyDialogDriver.h"

#include "rycore/automation/RyDialogButtons.h"
#include "rycore/automation/RyWidgetFilling.h"
#include "rycore/script/RyScriptEngine.h"
#include "rycore/ui/RyScriptForm.h"

#include <QAbstractButton>
#include <QApplication>
#include <QProgressDialog>
#include <QTimer>

#include <algorithm>

namespace {

constexpr int Attempts = 3;        // to accept a dialog that stays open
constexpr int MostOpenings = 10;   // of one dialog object
constexpr int MostSameInARow = 50; // of dialogs and boxes that look alike

std::vector<RyDialogDriver *> drivers;

RyDialogRecord recordOf(QDialog *dialog)
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
        record.buttons.append(ryButtonName(button));
    if (const QAbstractButton *button = RyDialogButtons::defaultButton(dialog))
        record.defaultButton = ryButtonName(button);
    if (const QAbstractButton *button = RyDialogButtons::escapeButton(dialog))
        record.escapeButton = ryButtonName(button);
    if (const auto *box = qobject_cast<QMessageBox *>(dialog)) {
        record.kind = RyDialogRecord::MessageBox;
        record.text = box->text();
        record.informativeText = box->informativeText();
        record.icon = box->icon();
    }
    return record;
}

bool lookAlike(const RyDialogRecord &a, const RyDialogRecord &b)
{
    return a.kind == b.kind && a.className == b.className && a.objectName == b.objectName && a.title == b.title &&
           a.text == b.text && a.buttons == b.buttons;
}

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
    m_fields.push_back({name, value, false});
}

void RyDialogDriver::setAnswer(const QString &title, const QString &button)
{
    m_answers.push_back({title, button, false});
}

std::vector<RyDialogRecord> RyDialogDriver::boxes() const
{
    std::vector<RyDialogRecord> boxes;
    std::copy_if(m_records.begin(), m_records.end(), std::back_inserter(boxes),
                 [](const RyDialogRecord &record) { return record.kind == RyDialogRecord::MessageBox; });
    return boxes;
}

QStringList RyDialogDriver::unusedFields() const
{
    QStringList names;
    for (const Field &field : m_fields) {
        if (!field.used)
            names.append(field.name);
    }
    return names;
}

QStringList RyDialogDriver::unusedAnswers() const
{
    QStringList titles;
    for (const Answer &answer : m_answers) {
        if (!answer.used)
            titles.append(answer.title);
    }
    return titles;
}

void RyDialogDriver::clear()
{
    m_fields.clear();
    m_answers.clear();
    m_records.clear();
    m_errors.clear();
    m_openings.clear();
    m_sameInARow = 0;
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
    m_records.push_back(recordOf(dialog));
    const bool loops = repeatsItself(dialog);
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

bool RyDialogDriver::repeatsItself(QDialog *dialog)
{
    const RyDialogRecord &record = m_records.back();
    const bool same = m_records.size() > 1 && lookAlike(m_records[m_records.size() - 2], record);
    m_sameInARow = same ? m_sameInARow + 1 : 1;
    const auto gone = [](const Opening &opening) { return !opening.dialog; };
    m_openings.erase(std::remove_if(m_openings.begin(), m_openings.end(), gone), m_openings.end());
    auto opening =
        std::find_if(m_openings.begin(), m_openings.end(), [&](const Opening &o) { return o.dialog == dialog; });
    if (opening == m_openings.end())
        opening = m_openings.insert(m_openings.end(), Opening{dialog, 0});
    return ++opening->times > MostOpenings || m_sameInARow > MostSameInARow;
}

RyDialogDriver::Answer *RyDialogDriver::answerFor(const RyDialogRecord &record)
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
    if (last)
        last->used = true;
    return last;
}

void RyDialogDriver::answerBox(QMessageBox *box, size_t record)
{
    QAbstractButton *button = nullptr;
    if (const Answer *answer = answerFor(m_records[record])) {
        button = RyDialogButtons::findButton(box, answer->button);
        if (!button) {
            const RyDialogRecord &r = m_records[record];
            m_errors.append(tr("The message box \"%1\" has no button \"%2\"; it has %3.")
                                .arg(r.title, answer->button, r.buttons.join(QStringLiteral(", "))));
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
    m_records[record].answered = ryButtonName(button);
    m_records[record].cancelled = RyDialogButtons::givesUp(box, button);
    button->click();
}

QStringList RyDialogDriver::fillFields(QDialog *dialog)
{
    QStringList errors;
    const QPointer<QDialog> guard(dialog);
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
        QString error;
        QWidget *widget = ryFindField(dialog, name);
        if (!widget) {
            const QStringList fields = ryDescribeFields(dialog);
            error = fields.isEmpty()
                        ? tr("there is no field %1, and no other").arg(name)
                        : tr("there is no field %1; there is %2").arg(name, fields.join(QStringLiteral(", ")));
        } else {
            const QString value = m_fields[i].value;
            ryFillWidget(widget, value, &error);
        }
        if (!error.isEmpty() && guard)
            errors.append(tr("In the dialog \"%1\": %2.").arg(dialog->windowTitle(), error));
    }
    return errors;
}

void RyDialogDriver::acceptDialog(QDialog *dialog, size_t record)
{
    const QPointer<QDialog> guard(dialog);
    const QStringList errors = fillFields(dialog);
    m_errors += errors;
    if (!guard || !guard->isVisible())
        return;
    if (!errors.isEmpty()) {
        reject(dialog, record, tr("its fields could not be filled"));
        return;
    }
    QAbstractButton *button = RyDialogButtons::acceptButton(dialog);
    if (const Answer *answer = answerFor(m_records[record])) {
        button = RyDialogButtons::findButton(dialog, answer->button);
        if (!button) {
            m_errors.append(tr("The dialog \"%1\" has no button \"%2\"; it has %3.")
                                .arg(m_records[record].title, answer->button,
                                     m_records[record].buttons.join(QStringLiteral(", "))));
            reject(dialog, record, m_errors.last());
            return;
        }
    }
    const QPointer<QAbstractButton> pressed(button);
    QString complaint = tr("it did not take what its fields hold");
    m_records[record].answered = button ? ryButtonName(button) : QStringLiteral("accept");
    m_records[record].cancelled = RyDialogButtons::givesUp(dialog, button);
    for (int attempt = 0; attempt < Attempts && guard && guard->isVisible(); ++attempt) {
        if (button && (!pressed || !pressed->isEnabled())) {
            const QStringList fields = ryDescribeFields(dialog);
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
            m_records[i].corrects = true;
            if (m_records[i].offersOnlyOk())
                complaint = m_records[i].plainText();
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
    m_records[record].cancelled = false;
    m_records[record].refused = true;
    m_records[record].reason = reason;
    const QPointer<QDialog> guard(dialog);
    const QPointer<QAbstractButton> button(RyDialogButtons::escapeButton(dialog));
    m_records[record].answered = button ? ryButtonName(button) : QStringLiteral("reject");
    if (button)
        button->click();
    if (guard && guard->isVisible())
        guard->reject();
    if (guard && guard->isVisible())
        guard->done(QDialog::Rejected);
}
