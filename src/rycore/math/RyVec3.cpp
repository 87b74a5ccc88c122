#include "rycore/math/RyVec3.h"

#include "rycore/math/RyFastMath.h"
#include "rycore/math/RyQuat.h"

using RyFastMath::toFloat;

float RyVec3::length() const
{
    return toFloat(std::sqrt(double(x) * x + double(y) * y + double(z) * z));
}

RyVec3 RyVec3::normalized() const
{
    const double size = std::sqrt(double(x) * x + double(y) * y + double(z) * z);
    if (size == 0.0)
        return {};
    if (std::isinf(size)) {
        // An overflowed vector keeps the direction of its infinite components.
        const auto sign = [](float v) { return std::isinf(v) ? std::copysign(1.0f, v) : 0.0f; };
        return RyVec3(sign(x), sign(y), sign(z)).normalized();
    }
    return {float(x / size), float(y / size), float(z / size)};
}

namespace {

/// Cross product, its length and the dot product of two vectors, without rounding to single precision.
struct Turn
{
    double x, y, z, sine, cosine;
    Turn(const RyVec3 &a, const RyVec3 &b)
        : x(double(a.y) * b.z - double(a.z) * b.y), y(double(a.z) * b.x - double(a.x) * b.z),
          z(double(a.x) * b.y - double(a.y) * b.x), sine(std::sqrt(x * x + y * y + z * z)),
          cosine(double(a.x) * b.x + double(a.y) * b.y + double(a.z) * b.z)
    {}
};

bool isZero(const RyVec3 &v)
{
    return v.x == 0.0f && v.y == 0.0f && v.z == 0.0f;
}

/// The unit axis that stands most nearly square to `v`, made square to it.
RyVec3 anyPerpendicular(const RyVec3 &v)
{
    const float ax = std::fabs(v.x);
    const float ay = std::fabs(v.y);
    const float az = std::fabs(v.z);
    const int smallest = ax <= ay && ax <= az ? 0 : ay <= az ? 1 : 2;
    return v.normalized().cross(RyVec3::axis(smallest)).normalized();
}

} // namespace

float RyVec3::getAngleTo(const RyVec3 &o) const
{
    if (isZero(*this) || isZero(o))
        return float(RyFastMath::Pi / 2);
    const Turn turn(*this, o);
    return float(std::atan2(turn.sine, turn.cosine));
}

RyQuat RyVec3::getRotationTo(const RyVec3 &o) const
{
    if (isZero(*this) || isZero(o))
        return {};
    const Turn turn(*this, o);
    // Below this the cross product is rounding noise and gives no axis.
    const double noise = 1e-14 * std::fabs(turn.cosine);
    if (turn.sine <= noise)
        return turn.cosine > 0.0 ? RyQuat() : RyQuat(anyPerpendicular(*this), float(RyFastMath::Pi));
    const double half = 0.5 * std::atan2(turn.sine, turn.cosine);
    const double factor = std::sin(half) / turn.sine;
    return {float(turn.x * factor), float(turn.y * factor), float(turn.z * factor), float(std::cos(half))};
}
