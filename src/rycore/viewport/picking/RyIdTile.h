#pragma once

#include <QRect>

#include <vector>

/// A square of the pick pass around the cursor, kept so that ids under a moving mouse need no further drawing.
class RyIdTile
{
public:
    static constexpr int Size = 256;

    void clear() { m_area = QRect(); }
    /// Logical pixels, y down. The ids are row by row from the top.
    void set(const QRect &area, std::vector<int> ids)
    {
        m_area = area;
        m_ids = std::move(ids);
    }
    bool contains(const QPoint &pixel) const { return m_area.contains(pixel); }
    int idAt(const QPoint &pixel) const
    {
        return m_ids[size_t((pixel.y() - m_area.top()) * m_area.width() + pixel.x() - m_area.left())];
    }
    /// The square around a pixel.
    static QRect areaAround(const QPoint &pixel)
    {
        return QRect(pixel.x() - Size / 2, pixel.y() - Size / 2, Size, Size);
    }

private:
    QRect m_area;
    std::vector<int> m_ids;
};
