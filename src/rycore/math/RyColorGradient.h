#pragma once

#include <QColor>

#include <vector>

/// Linear RGBA between colour stops; positions beyond the ends take the end stops. Without stops: transparent black.
class RyColorGradient
{
public:
    void addGradientColor(float position, const QColor &color);
    QColor getColor(float position) const;

private:
    struct Stop
    {
        float position;
        QColor color;
    };
    std::vector<Stop> m_stops; // sorted by position
};
