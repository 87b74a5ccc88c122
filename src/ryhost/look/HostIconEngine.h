#pragma once

#include <QByteArray>
#include <QIconEngine>

/// Draws an SVG whose grey #808080 stands for the text colour of the palette.
class HostIconEngine : public QIconEngine
{
public:
    explicit HostIconEngine(const QByteArray &drawing) : m_drawing(drawing) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override;
    /// `size` in pixels of the device.
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override;
    QString key() const override { return QStringLiteral("HostIconEngine"); }
    QIconEngine *clone() const override { return new HostIconEngine(m_drawing); }

private:
    QByteArray m_drawing;
};
