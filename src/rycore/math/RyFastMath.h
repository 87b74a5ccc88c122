#pragma once

#include <cmath>
#include <limits>

namespace RyFastMath {

constexpr double Pi = 3.14159265358979323846;
constexpr double RadiansPerDegree = Pi / 180.0;
constexpr double DegreesPerRadian = 180.0 / Pi;

inline void sinAndCos(float angle, float &sine, float &cosine)
{
    sine = std::sin(angle);
    cosine = std::cos(angle);
}

/// To single precision; what does not fit becomes the largest finite number of its sign.
inline float toFloat(double value)
{
    constexpr double Largest = std::numeric_limits<float>::max();
    return float(value > Largest ? Largest : value < -Largest ? -Largest : value);
}

} // namespace RyFastMath
