#include "rycore/parametric/RyLegacyBendZone.h"

#include "rycore/parametric/RyLegacyRamps.h"

using namespace RyLegacyRamps;
using RyFastMath::Pi;

RyLegacyBendZone::RyLegacyBendZone(int axis, const double angles[4], double length)
    : m_axis(axis), m_nearRadius(0.05 * length)
{
    const double a = angles[0];
    const double b = angles[1];
    const double c = angles[2];
    const double d = angles[3];
    const double width = wrapUp(b - c);
    const bool crossed = width > 1.5 * Pi;
    m_half = crossed ? 0.0 : width / 2.0;
    m_middle = crossed ? b + wrap(c - b) / 2.0 : b - m_half;
    m_outA = std::min(m_half + std::max(wrap(a - b), 0.0), Pi);
    m_outD = std::min(m_half + std::max(wrap(c - d), 0.0), Pi);
}

RyLegacyBendZone::Ray RyLegacyBendZone::at(const double y[3]) const
{
    // The coordinates of the two axes that the zero ray and the quarter ray point along.
    const double along = m_axis == 0 ? -y[2] : y[0];
    const double across = m_axis == 1 ? y[2] : y[1];
    const double delta = wrap(std::atan2(across, along) - m_middle);
    Ray ray;
    ray.sideOfA = delta >= 0.0;
    const double out = ray.sideOfA ? m_outA : m_outD;
    constexpr double Narrowest = 1e-6;
    ray.ramp = smooth((out - std::fabs(delta)) / std::max(out - m_half, Narrowest));
    if (m_nearRadius > 0.0)
        ray.nearAxis = smooth(std::sqrt(along * along + across * across) / m_nearRadius);
    return ray;
}
