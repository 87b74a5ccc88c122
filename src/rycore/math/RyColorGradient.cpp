#include "rycore/math/RyColorGradient.h"

#include <algorithm>

void RyColorGradient::addGradientColor(float position, const QColor &color)
{
    const auto place = std::upper_bound(m_stops.begin(), m_stops.end(), position,
                                        [](float p, const Stop &stop) { return p < stop.position; });
    m_stops.insert(place, Stop{position, color});
}

QColor RyColorGradient::getColor(float position) const
{
    if (m_stops.empty())
        return QColor(0, 0, 0, 0);
    const auto after = std::upper_bound(m_stops.begin(), m_stops.end(), position,
                                        [](float p, const Stop &stop) { return p < stop.position; });
    if (after == m_stops.begin())
        return m_stops.front().color;
    if (after == m_stops.end())
        return m_stops.back().color;
    const auto before = after - 1;
    const double t = (double(position) - before->position) / (double(after->position) - before->position);
    const auto mix = [t](double a, double b) { return std::clamp(a + (b - a) * t, 0.0, 1.0); };
    const QColor &a = before->color;
    const QColor &b = after->color;
    return QColor::fromRgbF(mix(a.redF(), b.redF()), mix(a.greenF(), b.greenF()), mix(a.blueF(), b.blueF()),
                            mix(a.alphaF(), b.alphaF()));
}
