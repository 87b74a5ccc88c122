#pragma once

#include "rycore/math/RyMatrix4.h"
#include "support/RyRandom.h"

#include <array>
#include <cmath>
#include <limits>

/// Plain double precision mathematics, written without the library, that the tests compare with.
namespace Plain {

constexpr double Pi = 3.14159265358979323846;
constexpr int Cases = 10000;

using Vec = std::array<double, 3>;
using Mat = std::array<std::array<double, 4>, 4>;

inline Vec vec(const RyVec3 &v)
{
    return {v.x, v.y, v.z};
}
inline double dot(const Vec &a, const Vec &b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
inline double length(const Vec &a)
{
    return std::sqrt(dot(a, a));
}
inline Vec cross(const Vec &a, const Vec &b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
inline Vec unit(const Vec &a)
{
    const double size = length(a);
    return {a[0] / size, a[1] / size, a[2] / size};
}
inline double distance(const Vec &a, const Vec &b)
{
    return length({a[0] - b[0], a[1] - b[1], a[2] - b[2]});
}
inline double distance(const RyVec3 &a, const Vec &b)
{
    return distance(vec(a), b);
}

/// Right-handed turn of v about a unit axis.
inline Vec turn(const Vec &v, const Vec &axis, double angle)
{
    const Vec sideways = cross(axis, v);
    const double along = dot(axis, v);
    const double s = std::sin(angle);
    const double c = std::cos(angle);
    Vec result;
    for (size_t i = 0; i < 3; ++i)
        result[i] = v[i] * c + sideways[i] * s + axis[i] * along * (1 - c);
    return result;
}

inline Mat identity()
{
    Mat m{};
    for (size_t i = 0; i < 4; ++i)
        m[i][i] = 1.0;
    return m;
}
inline Mat mat(const RyMatrix4 &o)
{
    Mat m;
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j)
            m[size_t(i)][size_t(j)] = o[i][j];
    }
    return m;
}
inline Mat product(const Mat &a, const Mat &b)
{
    Mat m{};
    for (size_t i = 0; i < 4; ++i) {
        for (size_t j = 0; j < 4; ++j) {
            for (size_t k = 0; k < 4; ++k)
                m[i][j] += a[i][k] * b[k][j];
        }
    }
    return m;
}
/// Image of a row vector with w = 1.
inline Vec image(const Vec &v, const Mat &m)
{
    Vec r;
    for (size_t j = 0; j < 3; ++j)
        r[j] = v[0] * m[0][j] + v[1] * m[1][j] + v[2] * m[2][j] + m[3][j];
    return r;
}
inline double difference(const Mat &a, const Mat &b)
{
    double most = 0.0;
    for (size_t i = 0; i < 4; ++i) {
        for (size_t j = 0; j < 4; ++j)
            most = std::max(most, std::fabs(a[i][j] - b[i][j]));
    }
    return most;
}

inline bool finite(const RyVec3 &v)
{
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}
inline bool hasNan(const RyVec3 &v)
{
    return std::isnan(v.x) || std::isnan(v.y) || std::isnan(v.z);
}
inline bool finite(const RyQuat &q)
{
    return std::isfinite(q.w) && finite(RyVec3(q.x, q.y, q.z));
}
inline bool finite(const RyMatrix4 &m)
{
    for (int i = 0; i < 16; ++i) {
        if (!std::isfinite(m.data()[i]))
            return false;
    }
    return true;
}

class Random : public RyRandom
{
public:
    RyVec3 direction()
    {
        for (;;) {
            const RyVec3 v = vector(1.0);
            if (length(vec(v)) > 0.1)
                return v;
        }
    }
    float angle() { return float(number(-2 * Pi, 2 * Pi)); }
    RyQuat rotation()
    {
        const Vec a = unit(vec(direction()));
        const double half = number(-Pi, Pi);
        return {float(a[0] * std::sin(half)), float(a[1] * std::sin(half)), float(a[2] * std::sin(half)),
                float(std::cos(half))};
    }
    RyMatrix4 matrix(double size = 3.0)
    {
        RyMatrix4 m(true);
        for (int i = 0; i < 4; ++i) {
            for (int j = 0; j < 3; ++j)
                m[i][j] = float(number(-size, size));
        }
        return m;
    }
    /// Any finite float: zeros of both signs, the smallest and the largest numbers, and all between.
    float anyFinite()
    {
        switch (integer(0, 9)) {
        case 0:
            return 0.0f;
        case 1:
            return -0.0f;
        case 2:
            return std::numeric_limits<float>::max() * float(chance(0.5) ? 1 : -1);
        case 3:
            return std::numeric_limits<float>::denorm_min() * float(chance(0.5) ? 1 : -1);
        case 4:
            return std::numeric_limits<float>::min();
        case 5:
            return 1.0f;
        default:
            return float(number(-1, 1) * std::pow(10.0, number(-44, 38)));
        }
    }
    RyVec3 anyVector() { return {anyFinite(), anyFinite(), anyFinite()}; }
    RyQuat anyQuat() { return {anyFinite(), anyFinite(), anyFinite(), anyFinite()}; }
    RyMatrix4 anyMatrix()
    {
        RyMatrix4 m(true);
        const bool projective = chance(0.3);
        for (int i = 0; i < 4; ++i) {
            for (int j = 0; j < (projective ? 4 : 3); ++j)
                m[i][j] = anyFinite();
        }
        return m;
    }
};

} // namespace Plain
