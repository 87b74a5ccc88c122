#include "rycore/math/RyQuat.h"

#include "rycore/math/RyFastMath.h"

using RyFastMath::toFloat;

namespace {

struct Quat
{
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    double w = 1.0;

    Quat operator*(const Quat &o) const
    {
        return {w * o.x + x * o.w + y * o.z - z * o.y, w * o.y - x * o.z + y * o.w + z * o.x,
                w * o.z + x * o.y - y * o.x + z * o.w, w * o.w - x * o.x - y * o.y - z * o.z};
    }
    RyQuat toFloats() const { return {toFloat(x), toFloat(y), toFloat(z), toFloat(w)}; }
};

double normSquared(const RyQuat &q)
{
    return double(q.x) * q.x + double(q.y) * q.y + double(q.z) * q.z + double(q.w) * q.w;
}

Quat unit(const RyQuat &q)
{
    const double size = std::sqrt(normSquared(q));
    return size == 0.0 ? Quat() : Quat{q.x / size, q.y / size, q.z / size, q.w / size};
}

/// The rows of the matrix of a unit quaternion.
void toRows(const Quat &q, double m[3][3])
{
    m[0][0] = 1 - 2 * (q.y * q.y + q.z * q.z);
    m[0][1] = 2 * (q.x * q.y - q.w * q.z);
    m[0][2] = 2 * (q.x * q.z + q.w * q.y);
    m[1][0] = 2 * (q.x * q.y + q.w * q.z);
    m[1][1] = 1 - 2 * (q.x * q.x + q.z * q.z);
    m[1][2] = 2 * (q.y * q.z - q.w * q.x);
    m[2][0] = 2 * (q.x * q.z - q.w * q.y);
    m[2][1] = 2 * (q.y * q.z + q.w * q.x);
    m[2][2] = 1 - 2 * (q.x * q.x + q.y * q.y);
}

/// The factor of one control: a right-handed turn by `degrees` about a unit axis.
Quat controlFactor(int axis, double degrees)
{
    const double half = -0.5 * std::fmod(degrees, 360.0) * RyFastMath::RadiansPerDegree;
    const double s = std::sin(half);
    return {axis == 0 ? s : 0.0, axis == 1 ? s : 0.0, axis == 2 ? s : 0.0, std::cos(half)};
}

constexpr int Xyz[3] = {0, 1, 2};

} // namespace

RyQuat::RyQuat(const RyVec3 &axis, float angle)
{
    const double size = std::sqrt(double(axis.x) * axis.x + double(axis.y) * axis.y + double(axis.z) * axis.z);
    if (size == 0.0 || !std::isfinite(size))
        return;
    const double s = std::sin(0.5 * angle) / size;
    x = float(axis.x * s);
    y = float(axis.y * s);
    z = float(axis.z * s);
    w = float(std::cos(0.5 * angle));
}

void RyQuat::getValue(RyVec3 &axis, float &angle) const
{
    const double size = std::sqrt(double(x) * x + double(y) * y + double(z) * z);
    if (size == 0.0) {
        axis = RyVec3(0.0f, 0.0f, 1.0f);
        angle = 0.0f;
        return;
    }
    axis = RyVec3(float(x / size), float(y / size), float(z / size));
    angle = float(2.0 * std::atan2(size, double(w)));
}

RyQuat RyQuat::operator*(const RyQuat &o) const
{
    return (Quat{x, y, z, w} * Quat{o.x, o.y, o.z, o.w}).toFloats();
}

RyQuat RyQuat::inverse() const
{
    const double n = normSquared(*this);
    return n == 0.0 ? RyQuat() : Quat{-x / n, -y / n, -z / n, w / n}.toFloats();
}

RyQuat RyQuat::normalized() const
{
    return unit(*this).toFloats();
}

RyVec3 RyQuat::multVec(const RyVec3 &v) const
{
    double m[3][3];
    toRows(unit(*this), m);
    return {toFloat(v.x * m[0][0] + v.y * m[1][0] + v.z * m[2][0]),
            toFloat(v.x * m[0][1] + v.y * m[1][1] + v.z * m[2][1]),
            toFloat(v.x * m[0][2] + v.y * m[1][2] + v.z * m[2][2])};
}

void RyQuat::makeClosest(const RyQuat &reference)
{
    if (dot(reference) < 0.0f)
        *this = RyQuat(-x, -y, -z, -w);
}

RyQuat RyQuat::fromEulerXYZ(const RyVec3 &degrees)
{
    return fromEuler(degrees, Xyz);
}

RyVec3 RyQuat::toEulerXYZ() const
{
    return toEuler(Xyz);
}

RyQuat RyQuat::fromEuler(const RyVec3 &degrees, const int order[3])
{
    return (controlFactor(order[0], degrees[order[0]]) * controlFactor(order[1], degrees[order[1]]) *
            controlFactor(order[2], degrees[order[2]]))
        .toFloats();
}

RyVec3 RyQuat::toEuler(const int order[3]) const
{
    const int a = order[0];
    const int b = order[1];
    const int c = order[2];
    const double sign = (b - a + 3) % 3 == 1 ? 1.0 : -1.0;
    double m[3][3];
    toRows(unit(*this), m);

    const double middle = std::hypot(m[a][a], m[a][b]);
    const double angleB = std::atan2(-sign * m[a][c], middle);
    // At a pole the first and the last turn share one axis; the first takes all of it.
    const double angleC = middle < 1e-6 ? 0.0 : std::atan2(sign * m[a][b], m[a][a]);
    // The first angle comes from what is left when the last turn is undone, so that the two agree near the poles.
    const double sc = sign * std::sin(angleC);
    const double cc = std::cos(angleC);
    const double angleA = std::atan2(-sign * (m[c][b] * cc - m[c][a] * sc), m[b][b] * cc - m[b][a] * sc);

    RyVec3 degrees;
    degrees[a] = float(angleA * RyFastMath::DegreesPerRadian);
    degrees[b] = float(angleB * RyFastMath::DegreesPerRadian);
    degrees[c] = float(angleC * RyFastMath::DegreesPerRadian);
    return degrees;
}
