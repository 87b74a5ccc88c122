#include "rycore/parametric/RyBendAngles.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double FullTurn = 360.0;

} // namespace

double RyBendAngles::wrapUpward(double degrees)
{
    const double rest = std::fmod(degrees, FullTurn);
    return rest < 0.0 ? rest + FullTurn : rest;
}

double RyBendAngles::wrap(double degrees)
{
    const double upward = wrapUpward(degrees);
    return upward > FullTurn / 2.0 ? upward - FullTurn : upward;
}

RyBendAngles::RyBendAngles(const Values &degrees) : m_start(degrees)
{
    const double a = double(degrees[0]), b = double(degrees[1]), c = double(degrees[2]), d = double(degrees[3]);
    m_unwrapped[0] = b + std::max(wrap(a - b), 0.0);
    m_unwrapped[1] = b;
    m_unwrapped[2] = b - wrapUpward(b - c);
    m_unwrapped[3] = m_unwrapped[2] - std::max(wrap(c - d), 0.0);
}

void RyBendAngles::push(int index, double degrees)
{
    const auto moved = size_t(index);
    const auto keepOrderAround = [this](size_t ray) {
        for (size_t i = 0; i < ray; ++i)
            m_unwrapped[i] = std::max(m_unwrapped[i], m_unwrapped[ray]);
        for (size_t i = ray + 1; i < m_unwrapped.size(); ++i)
            m_unwrapped[i] = std::min(m_unwrapped[i], m_unwrapped[ray]);
    };
    m_unwrapped[moved] += wrap(degrees - m_unwrapped[moved]);
    keepOrderAround(moved);
    if (m_unwrapped.front() - m_unwrapped.back() <= FullTurn)
        return;
    if (moved < 2) {
        m_unwrapped.back() = m_unwrapped.front() - FullTurn;
        keepOrderAround(m_unwrapped.size() - 1);
    } else {
        m_unwrapped.front() = m_unwrapped.back() + FullTurn;
        keepOrderAround(0);
    }
}

RyBendAngles::Values RyBendAngles::values() const
{
    constexpr double sameDirection = 1e-6; // less than a float tells apart
    Values values = m_start;
    for (size_t i = 0; i < values.size(); ++i) {
        if (std::abs(wrap(m_unwrapped[i] - double(m_start[i]))) > sameDirection)
            values[i] = float(wrap(m_unwrapped[i]));
    }
    return values;
}
