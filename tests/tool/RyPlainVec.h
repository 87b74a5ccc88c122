#pragma once

#include "rycore/math/RyVec3.h"

#include <array>
#include <cmath>

/// Plain double precision vectors: what the drags are measured against shares no code with them.
using Vec = std::array<double, 3>;

inline Vec toVec(const RyVec3 &v)
{
    return {v.x, v.y, v.z};
}
inline Vec operator+(const Vec &a, const Vec &b)
{
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}
inline Vec operator-(const Vec &a, const Vec &b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
inline Vec operator*(const Vec &a, double s)
{
    return {a[0] * s, a[1] * s, a[2] * s};
}
inline double dot(const Vec &a, const Vec &b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
inline Vec cross(const Vec &a, const Vec &b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
inline double length(const Vec &a)
{
    return std::sqrt(dot(a, a));
}
inline Vec unit(const Vec &a)
{
    return a * (1.0 / length(a));
}
inline double distance(const Vec &a, const Vec &b)
{
    return length(a - b);
}
