#include "ryhost/look/HostIconEngine.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>
#include <QSvgRenderer>

static QColor colorOf(QIcon::Mode mode)
{
    const QPalette palette = QGuiApplication::palette();
    switch (mode) {
    case QIcon::Disabled:
        return palette.color(QPalette::Disabled, QPalette::ButtonText);
    case QIcon::Selected:
        return palette.color(QPalette::HighlightedText);
    default:
        return palette.color(QPalette::ButtonText);
    }
}

QPixmap HostIconEngine::pixmap(const QSize &size, QIcon::Mode mode, QIcon::State)
{
    const QByteArray color = colorOf(mode).name().toLatin1();
    const QString cacheKey = QStringLiteral("HostIcon %1x%2 %3 %4")
                                 .arg(size.width())
                                 .arg(size.height())
                                 .arg(QString::fromLatin1(color))
                                 .arg(qHash(m_drawing));
    QPixmap pixmap;
    if (QPixmapCache::find(cacheKey, &pixmap))
        return pixmap;
    pixmap = QPixmap(size);
    pixmap.fill(Qt::transparent);
    QSvgRenderer drawing(QByteArray(m_drawing).replace("#808080", color));
    drawing.setAspectRatioMode(Qt::KeepAspectRatio);
    QPainter painter(&pixmap);
    drawing.render(&painter);
    painter.end();
    QPixmapCache::insert(cacheKey, pixmap);
    return pixmap;
}

void HostIconEngine::paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state)
{
    const qreal ratio = painter->device()->devicePixelRatioF();
    QPixmap drawn = pixmap((QSizeF(rect.size()) * ratio).toSize(), mode, state);
    drawn.setDevicePixelRatio(ratio);
    painter->drawPixmap(rect.topLeft(), drawn);
}
