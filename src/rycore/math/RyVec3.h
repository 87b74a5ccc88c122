#pragma once

#include <QMetaType>

#include <cmath>

class RyQuat;

/// A point or a direction: three floats, in centimetres where it is a length.
/// Nothing here yields NaN from finite input: a division by zero and the normal of a zero vector are (0,0,0).
class RyVec3
{
public:
    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;

    constexpr RyVec3() = default;
    constexpr RyVec3(float x_, float y_, float z_) : x(x_), y(y_), z(z_) {}

    /// The unit vector of axis 0 (X), 1 (Y) or 2 (Z).
    static constexpr RyVec3 axis(int index)
    {
        return {index == 0 ? 1.0f : 0.0f, index == 1 ? 1.0f : 0.0f, index == 2 ? 1.0f : 0.0f};
    }

    constexpr float &operator[](int index) { return index == 0 ? x : index == 1 ? y : z; }
    constexpr float operator[](int index) const { return index == 0 ? x : index == 1 ? y : z; }

    constexpr RyVec3 operator+(const RyVec3 &o) const { return {x + o.x, y + o.y, z + o.z}; }
    constexpr RyVec3 operator-(const RyVec3 &o) const { return {x - o.x, y - o.y, z - o.z}; }
    constexpr RyVec3 operator-() const { return {-x, -y, -z}; }
    constexpr RyVec3 operator*(float s) const { return {x * s, y * s, z * s}; }
    /// Division by zero gives (0,0,0).
    constexpr RyVec3 operator/(float s) const { return s == 0.0f ? RyVec3() : RyVec3(x / s, y / s, z / s); }
    constexpr RyVec3 &operator+=(const RyVec3 &o) { return *this = *this + o; }
    constexpr RyVec3 &operator-=(const RyVec3 &o) { return *this = *this - o; }
    constexpr RyVec3 &operator*=(float s) { return *this = *this * s; }
    constexpr RyVec3 &operator/=(float s) { return *this = *this / s; }
    constexpr bool operator==(const RyVec3 &o) const { return x == o.x && y == o.y && z == o.z; }
    constexpr bool operator!=(const RyVec3 &o) const { return !(*this == o); }

    /// Products are formed in double, so that huge components do not cancel to NaN.
    constexpr float dot(const RyVec3 &o) const { return float(double(x) * o.x + double(y) * o.y + double(z) * o.z); }
    constexpr RyVec3 cross(const RyVec3 &o) const
    {
        return {float(double(y) * o.z - double(z) * o.y), float(double(z) * o.x - double(x) * o.z),
                float(double(x) * o.y - double(y) * o.x)};
    }
    /// Computed in double, so that neither tiny nor huge vectors lose their length.
    float length() const;
    /// Makes the length 1; a zero vector stays zero.
    void normalize() { *this = normalized(); }
    RyVec3 normalized() const;

    /// The unsigned angle in [0, pi] radians; pi/2 when one of the two is zero.
    float getAngleTo(const RyVec3 &o) const;
    /// The rotation q with `q.multVec(unit o) == unit *this` (axis this x o, angle getAngleTo(o)).
    /// Parallel vectors give the identity, opposite ones pi about some perpendicular, a zero vector the identity.
    RyQuat getRotationTo(const RyVec3 &o) const;
};

constexpr RyVec3 operator*(float s, const RyVec3 &v)
{
    return v * s;
}

Q_DECLARE_METATYPE(RyVec3)
