#include "rycore/ui/RyDividerBar.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QStyleOption>

#include <cstdlib>

static constexpr int Height = 12;
static constexpr int KeyPixels = 10;

RyDividerBar::RyDividerBar(QWidget *parent) : QAbstractButton(parent)
{
    setObjectName(QStringLiteral("DividerBar"));
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
    setMovesEnabled(true);
}

void RyDividerBar::setMovesEnabled(bool onOff)
{
    m_movesEnabled = onOff;
    setCursor(onOff ? Qt::SplitVCursor : Qt::ArrowCursor);
}

void RyDividerBar::setFoldsDown(bool onOff)
{
    m_foldsDown = onOff;
    update();
}

QSize RyDividerBar::sizeHint() const
{
    return QSize(4 * Height, Height);
}

bool RyDividerBar::event(QEvent *event)
{
    if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave)
        update();
    return QAbstractButton::event(event);
}

void RyDividerBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette &colors = palette();
    const QColor line = colors.color(QPalette::Mid);
    if (isDown() || underMouse())
        painter.fillRect(rect(), colors.color(QPalette::Button));
    painter.setPen(hasFocus() ? colors.color(QPalette::Highlight) : line);
    if (hasFocus()) {
        painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
    } else {
        painter.drawLine(QPointF(0, 0.5), QPointF(width(), 0.5));
        painter.drawLine(QPointF(0, height() - 0.5), QPointF(width(), height() - 0.5));
    }
    // Points to where the next click moves the bar.
    const bool pointsDown = m_foldsDown != isChecked();
    const double half = pointsDown ? 2.5 : -2.5;
    const QPointF middle = QRectF(rect()).center();
    QPainterPath arrow(middle + QPointF(-5, -half));
    arrow.lineTo(middle + QPointF(5, -half));
    arrow.lineTo(middle + QPointF(0, half));
    arrow.closeSubpath();
    painter.fillPath(arrow, colors.color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::ButtonText));
}

void RyDividerBar::mousePressEvent(QMouseEvent *event)
{
    m_isDragged = false;
    m_lastY = event->globalY();
    QAbstractButton::mousePressEvent(event);
}

void RyDividerBar::mouseMoveEvent(QMouseEvent *event)
{
    const int pixels = event->globalY() - m_lastY;
    const bool moves = m_movesEnabled && event->buttons().testFlag(Qt::LeftButton) &&
                       (m_isDragged || std::abs(pixels) >= QApplication::startDragDistance());
    if (!moves) {
        QAbstractButton::mouseMoveEvent(event);
        return;
    }
    m_isDragged = true;
    m_lastY = event->globalY();
    emit moved(pixels);
}

void RyDividerBar::mouseReleaseEvent(QMouseEvent *event)
{
    // The end of a drag is no click.
    if (m_isDragged)
        setDown(false);
    else
        QAbstractButton::mouseReleaseEvent(event);
    m_isDragged = false;
}

void RyDividerBar::keyPressEvent(QKeyEvent *event)
{
    const int key = event->key();
    if (m_movesEnabled && (key == Qt::Key_Up || key == Qt::Key_Down))
        emit moved(key == Qt::Key_Up ? -KeyPixels : KeyPixels);
    else if (key == Qt::Key_Return || key == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}
