#include "RampPlot.h"

#include <QImage>
#include <QPainter>

#include <utility>

void RampPlot::addCurve(const QString &name, const QColor &color, std::function<double(double)> curve)
{
    m_curves.push_back({name, color, std::move(curve)});
}

bool RampPlot::save(const QString &path) const
{
    constexpr int Width = 640;
    constexpr int Height = 284;
    const QRectF area(46, 16, Width - 66, Height - 100);
    const auto placeOf = [&](double x, double y) {
        return QPointF(area.left() + (x - m_from) / (m_to - m_from) * area.width(), area.bottom() - y * area.height());
    };
    QImage image(Width, Height, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QColor(215, 215, 215));
    for (double x = m_from; x <= m_to + 1e-9; x += m_step)
        painter.drawLine(placeOf(x, 0), placeOf(x, 1));
    for (const double y : {0.0, 0.5, 1.0})
        painter.drawLine(placeOf(m_from, y), placeOf(m_to, y));
    painter.setPen(Qt::black);
    for (double x = m_from; x <= m_to + 1e-9; x += m_step)
        painter.drawText(QRectF(placeOf(x, 0) + QPointF(-30, 4), QSizeF(60, 18)), Qt::AlignHCenter, QString::number(x));
    for (const double y : {0.0, 0.5, 1.0})
        painter.drawText(QRectF(placeOf(m_from, y) + QPointF(-42, -9), QSizeF(36, 18)),
                         Qt::AlignRight | Qt::AlignVCenter, QString::number(y));
    double left = area.left();
    for (const Curve &curve : m_curves) {
        painter.setPen(QPen(curve.color, 2));
        QPolygonF line;
        for (int i = 0; i <= 2 * int(area.width()); ++i) {
            const double x = m_from + (m_to - m_from) * i / (2.0 * area.width());
            line << placeOf(x, curve.value(x));
        }
        painter.drawPolyline(line);
        const QRectF room(left, Height - 30, Width, 20);
        painter.drawText(room, Qt::AlignLeft, curve.name);
        left += painter.fontMetrics().horizontalAdvance(curve.name) + 26;
    }
    painter.setPen(Qt::black);
    painter.drawText(QRectF(0, Height - 56, Width - 20, 20), Qt::AlignRight, m_axis);
    painter.end();
    return image.save(path);
}
