#include "rycore/ui/RyColorSwatch.h"

#include <QPainter>
#include <QStyle>

RyColorSwatch::RyColorSwatch(QWidget *parent) : QAbstractButton(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void RyColorSwatch::setColor(const QColor &color)
{
    m_color = color;
    update();
}

QSize RyColorSwatch::sizeHint() const
{
    return {fontMetrics().averageCharWidth() * 12, fontMetrics().height() + 8};
}

void RyColorSwatch::paintEvent(QPaintEvent *)
{
    const bool isMarked = isEnabled() && (hasFocus() || underMouse());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(isMarked ? QPalette::Highlight : QPalette::Dark), hasFocus() ? 2.0 : 1.0));
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1.0, 1.0, -1.0, -1.0), 3.0, 3.0);
    painter.setPen(Qt::NoPen);
    painter.setOpacity(isEnabled() ? 1.0 : 0.4);
    painter.setBrush(m_color);
    const double gap = isDown() ? 4.5 : 3.5;
    painter.drawRoundedRect(QRectF(rect()).adjusted(gap, gap, -gap, -gap), 1.5, 1.5);
}
