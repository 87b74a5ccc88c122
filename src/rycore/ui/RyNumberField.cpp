#include "rycore/ui/RyNumberField.h"

#include "rycore/ui/RyNumberExpression.h"

#include <QKeyEvent>
#include <QScopedValueRollback>
#include <QToolTip>
#include <QWheelEvent>

#include <cmath>
#include <limits>

RyNumberField::RyNumberField(QWidget *parent) : QLineEdit(parent)
{
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    showValue();
}

void RyNumberField::setValue(double value)
{
    m_value = value;
    if (!isModified())
        showValue();
}

void RyNumberField::setSuffix(const QString &suffix)
{
    m_suffix = suffix;
    showValue();
}

void RyNumberField::setBlank(bool blank)
{
    m_blank = blank;
    if (!isModified())
        showValue();
}

double RyNumberField::stepFactor(Qt::KeyboardModifiers modifiers)
{
    return modifiers & Qt::ShiftModifier ? 10.0 : modifiers & Qt::ControlModifier ? 0.1 : 1.0;
}

void RyNumberField::showValue()
{
    const QString text = m_blank ? QString() : RyNumberExpression::format(m_value) + m_suffix;
    if (text != this->text()) {
        const int place = cursorPosition();
        setText(text);
        setCursorPosition(hasFocus() ? place : 0);
    }
    setModified(false);
}

void RyNumberField::commitText()
{
    if (!isModified())
        return;
    QString typed = text().trimmed();
    if (!m_suffix.isEmpty() && typed.endsWith(m_suffix.trimmed()))
        typed.chop(m_suffix.trimmed().size());
    // "*2" is twice what the field has; a sign belongs to the number that is typed.
    if (!m_blank && (typed.startsWith(QLatin1Char('*')) || typed.startsWith(QLatin1Char('/'))))
        typed.prepend(QString::number(m_value, 'f', 9));
    double value = 0.0;
    QString reason;
    bool valid = RyNumberExpression::evaluate(typed, value, &reason);
    if (valid && std::abs(value) > double(std::numeric_limits<float>::max())) {
        valid = false;
        reason = tr("the number is too large");
    }
    if (valid)
        m_blank = false;
    setModified(false);
    if (valid) {
        emit valueEdited(value);
        showValue();
        return;
    }
    showValue();
    if (isVisible())
        QToolTip::showText(mapToGlobal(QPoint(0, height())), tr("Not taken: %1.").arg(reason), this);
    emit refused(reason);
}

void RyNumberField::stepBy(double steps)
{
    commitText();
    m_blank = false;
    emit valueEdited(m_value + steps * m_step);
    showValue();
    selectAll();
}

bool RyNumberField::event(QEvent *event)
{
    // A text field takes these keys whatever it has to undo; what was taken as a value is the scene's.
    if (event->type() == QEvent::ShortcutOverride && !isModified()) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo)) {
            event->ignore();
            return false;
        }
    }
    return QLineEdit::event(event);
}

void RyNumberField::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Up:
        stepBy(stepFactor(event->modifiers()));
        return;
    case Qt::Key_Down:
        stepBy(-stepFactor(event->modifiers()));
        return;
    case Qt::Key_PageUp:
        stepBy(10.0);
        return;
    case Qt::Key_PageDown:
        stepBy(-10.0);
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        commitText();
        selectAll();
        return;
    case Qt::Key_Escape:
        if (isModified()) {
            setModified(false);
            showValue();
            selectAll();
            return;
        }
        break;
    default:
        break;
    }
    QLineEdit::keyPressEvent(event);
}

void RyNumberField::focusInEvent(QFocusEvent *event)
{
    QLineEdit::focusInEvent(event);
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)
        selectAll();
}

void RyNumberField::focusOutEvent(QFocusEvent *event)
{
    // What is typed goes on behind its own menu.
    if (!m_opensMenu)
        commitText();
    QLineEdit::focusOutEvent(event);
}

void RyNumberField::contextMenuEvent(QContextMenuEvent *event)
{
    const QScopedValueRollback<bool> opening(m_opensMenu, true);
    QLineEdit::contextMenuEvent(event);
}

void RyNumberField::wheelEvent(QWheelEvent *event)
{
    // Only where the user is at work: a pane that scrolls past must not change numbers.
    if (!hasFocus() || event->angleDelta().y() == 0) {
        event->ignore();
        return;
    }
    stepBy((event->angleDelta().y() > 0 ? 1.0 : -1.0) * stepFactor(event->modifiers()));
    event->accept();
}
