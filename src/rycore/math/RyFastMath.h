#pragma once

#include <cmath>

namespace RyFastMath {

constexpr double Pi = 3.14159265358979323846;
constexpr double RadiansPerDegree = Pi / 180.0;
constexpr double DegreesPerRadian = 180.0 / Pi;

inline void sinAndCos(float angle, float &sine, float &cosine)
{
    sine = std::sin(angle);
    cosine = std::cos(angle);
}

} // namespace RyFastMath
