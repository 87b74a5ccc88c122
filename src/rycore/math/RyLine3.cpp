#include "rycore/math/RyLine3.h"

#include "rycore/math/RyFastMath.h"

using RyFastMath::toFloat;

namespace {

constexpr double ParallelSine = 1e-7;        // of unit directions rounded to single precision nothing smaller is known
constexpr double ParallelLinesSine = 0.0262; // of 1.5 degrees

struct Vec
{
    double x, y, z;
    Vec(const RyVec3 &v) : x(v.x), y(v.y), z(v.z) {}
    Vec(double x_, double y_, double z_) : x(x_), y(y_), z(z_) {}
    double dot(const Vec &o) const { return x * o.x + y * o.y + z * o.z; }
    Vec operator-(const Vec &o) const { return {x - o.x, y - o.y, z - o.z}; }
    Vec along(const Vec &d, double t) const { return {x + d.x * t, y + d.y * t, z + d.z * t}; }
    double length() const { return std::sqrt(dot(*this)); }
    RyVec3 toFloats() const { return {toFloat(x), toFloat(y), toFloat(z)}; }
};

} // namespace

void RyLine3::setEnds(const RyVec3 &a, const RyVec3 &b)
{
    m_origin = a;
    const Vec d = Vec(b) - Vec(a);
    const double size = d.length();
    m_direction = size == 0.0 ? RyVec3() : RyVec3(float(d.x / size), float(d.y / size), float(d.z / size));
}

bool RyLine3::planeIntersect(const RyVec3 &pointOnPlane, const RyVec3 &normal, RyVec3 &hit) const
{
    const Vec n(normal);
    const Vec d(m_direction);
    const double slope = n.dot(d);
    if (std::fabs(slope) <= ParallelSine * n.length() * d.length()) {
        hit = m_origin;
        return false;
    }
    const Vec o(m_origin);
    hit = o.along(d, n.dot(Vec(pointOnPlane) - o) / slope).toFloats();
    return true;
}

bool RyLine3::isParallelTo(const RyLine3 &other) const
{
    if (m_direction == RyVec3() || other.m_direction == RyVec3())
        return false;
    return Vec(m_direction.cross(other.m_direction)).length() < ParallelLinesSine;
}

float RyLine3::minDistanceFromLine(const RyLine3 &other, RyVec3 &pointOnThis, RyVec3 &pointOnOther) const
{
    const Vec o1(m_origin);
    const Vec d1(m_direction);
    const Vec o2(other.m_origin);
    const Vec d2(other.m_direction);
    const Vec between = o1 - o2;
    const double a = d1.dot(d1);
    const double b = d1.dot(d2);
    const double c = d2.dot(d2);
    double t1 = 0.0;
    double t2 = 0.0;
    if (c == 0.0) {
        t1 = a == 0.0 ? 0.0 : -d1.dot(between) / a;
    } else if (a == 0.0 || isParallelTo(other)) {
        t2 = d2.dot(between) / c;
    } else {
        const double e = d1.dot(between);
        const double f = d2.dot(between);
        const double square = a * c - b * b;
        t1 = (b * f - c * e) / square;
        t2 = (a * f - b * e) / square;
    }
    const Vec p1 = o1.along(d1, t1);
    const Vec p2 = o2.along(d2, t2);
    pointOnThis = p1.toFloats();
    pointOnOther = p2.toFloats();
    return toFloat((p1 - p2).length());
}

float RyLine3::minDistanceFromLine(const RyLine3 &other, RyVec3 &pointOnThis) const
{
    RyVec3 pointOnOther;
    return minDistanceFromLine(other, pointOnThis, pointOnOther);
}
