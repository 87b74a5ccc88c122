#include "rycore/ui/RyStyledButton.h"

#include <QLabel>
#include <QStyleOptionComboBox>
#include <QStylePainter>

RyStyledButton::RyStyledButton(QWidget *parent) : QPushButton(parent)
{
    setAutoDefault(false);
    setFocusPolicy(Qt::StrongFocus);
}

void RyStyledButton::setShowArrow(bool onOff)
{
    m_showsArrow = onOff;
    updateGeometry();
    update();
}

void RyStyledButton::setElideText(bool onOff)
{
    m_elidesText = onOff;
    updateGeometry();
    update();
}

void RyStyledButton::setMinimumWidthText(const QString &text)
{
    m_minimumWidthText = text;
    updateGeometry();
}

void RyStyledButton::showText(const QString &text)
{
    // An ampersand of a name is no mnemonic.
    setText(QString(text).replace(QLatin1Char('&'), QLatin1String("&&")));
    setToolTip(text);
    setAccessibleDescription(text);
    update();
}

QStyleOptionComboBox RyStyledButton::arrowOption() const
{
    QStyleOptionComboBox option;
    option.initFrom(this);
    option.frame = true;
    option.currentText = QString(text()).replace(QLatin1String("&&"), QLatin1String("&"));
    if (isDown())
        option.state |= QStyle::State_Sunken | QStyle::State_On;
    return option;
}

QSize RyStyledButton::sizeFor(const QString &text) const
{
    ensurePolished();
    const QSize content(fontMetrics().horizontalAdvance(text) + 4, fontMetrics().height());
    if (m_showsArrow) {
        const QStyleOptionComboBox option = arrowOption();
        return style()->sizeFromContents(QStyle::CT_ComboBox, &option, content, this);
    }
    QStyleOptionButton option;
    initStyleOption(&option);
    return style()->sizeFromContents(QStyle::CT_PushButton, &option, content, this);
}

QSize RyStyledButton::sizeHint() const
{
    return sizeFor(m_minimumWidthText.isEmpty() ? text() : m_minimumWidthText);
}

QSize RyStyledButton::minimumSizeHint() const
{
    if (!m_minimumWidthText.isEmpty() || !m_elidesText)
        return sizeHint();
    return sizeFor(QStringLiteral("\u2026"));
}

QString RyStyledButton::elided(int width) const
{
    const QString shown = arrowOption().currentText;
    return m_elidesText ? fontMetrics().elidedText(shown, Qt::ElideMiddle, width) : shown;
}

void RyStyledButton::paintEvent(QPaintEvent *)
{
    QStylePainter painter(this);
    if (m_showsArrow) {
        QStyleOptionComboBox option = arrowOption();
        painter.drawComplexControl(QStyle::CC_ComboBox, option);
        const QRect room = style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
        option.currentText = elided(room.width() - 2);
        painter.drawControl(QStyle::CE_ComboBoxLabel, option);
        return;
    }
    QStyleOptionButton option;
    initStyleOption(&option);
    const QRect room = style()->subElementRect(QStyle::SE_PushButtonContents, &option, this);
    option.text = elided(room.width()).replace(QLatin1Char('&'), QLatin1String("&&"));
    painter.drawControl(QStyle::CE_PushButton, option);
}

void RyStyledButton::showEvent(QShowEvent *event)
{
    if (accessibleName().isEmpty() && window()) {
        for (const QLabel *label : window()->findChildren<QLabel *>()) {
            if (label->buddy() == this)
                setAccessibleName(label->text().remove(QLatin1Char(':')).remove(QLatin1Char('&')).trimmed());
        }
    }
    QPushButton::showEvent(event);
}
