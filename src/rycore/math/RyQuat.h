#pragma once

#include "rycore/math/RyVec3.h"

/// A rotation as a quaternion: `RyQuat(axis, t)` has x,y,z = sin(t/2) * unit axis and w = cos(t/2).
/// `multVec(v)` is q^-1 v q, a right-handed turn of v about the axis by *minus* t; in a product the left factor
/// acts first: `(p * q).multVec(v) == q.multVec(p.multVec(v))`. Angles are radians.
class RyQuat
{
public:
    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;
    float w = 1.0f;

    constexpr RyQuat() = default;
    constexpr RyQuat(float x_, float y_, float z_, float w_) : x(x_), y(y_), z(z_), w(w_) {}
    /// A zero axis gives the identity.
    RyQuat(const RyVec3 &axis, float angle);

    /// Axis (unit) and angle in radians; the identity gives some unit axis and 0.
    void getValue(RyVec3 &axis, float &angle) const;

    /// Hamilton product.
    RyQuat operator*(const RyQuat &o) const;
    constexpr bool operator==(const RyQuat &o) const { return x == o.x && y == o.y && z == o.z && w == o.w; }
    constexpr bool operator!=(const RyQuat &o) const { return !(*this == o); }
    constexpr float dot(const RyQuat &o) const
    {
        return float(double(x) * o.x + double(y) * o.y + double(z) * o.z + double(w) * o.w);
    }

    /// The inverse rotation; the identity for a zero quaternion.
    RyQuat inverse() const;
    /// Length 1; the identity for a zero quaternion.
    RyQuat normalized() const;
    RyVec3 multVec(const RyVec3 &v) const;
    /// Negates the four numbers when the dot product with `reference` is negative: same rotation, nearer sign.
    void makeClosest(const RyQuat &reference);

    /// The rotation of three control values in degrees, right-handed turns about the fixed axes, X acting first, then
    /// Y, then Z: the product of the factors RyQuat(e_k, -angle_k) in that order.
    static RyQuat fromEulerXYZ(const RyVec3 &degrees);
    /// Control values in degrees with `fromEulerXYZ(toEulerXYZ(q)) == +-q` to 1e-5, also at the poles.
    RyVec3 toEulerXYZ() const;
    /// The same for any order of axes: `order` acts first to last.
    static RyQuat fromEuler(const RyVec3 &degrees, const int order[3]);
    RyVec3 toEuler(const int order[3]) const;
};

Q_DECLARE_METATYPE(RyQuat)
