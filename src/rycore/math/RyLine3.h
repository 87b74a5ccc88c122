#pragma once

#include "rycore/math/RyVec3.h"

/// A line through an origin along a unit direction; also used as a ray.
class RyLine3
{
public:
    RyLine3() = default;
    /// The line from `a` towards `b`; equal points give the direction (0,0,0).
    RyLine3(const RyVec3 &a, const RyVec3 &b) { setEnds(a, b); }
    void setEnds(const RyVec3 &a, const RyVec3 &b);

    const RyVec3 &getOrigin() const { return m_origin; }
    const RyVec3 &getDirection() const { return m_direction; }

    /// Where the line meets a plane. Parallel: false, and `hit` is the line's origin.
    bool planeIntersect(const RyVec3 &pointOnPlane, const RyVec3 &normal, RyVec3 &hit) const;
    /// Whether the two meet at less than about 1.5 degrees, whichever way they run: where closest points would lie far
    /// off and leap at every touch of the mouse. False for a line without a direction.
    bool isParallelTo(const RyLine3 &other) const;
    /// The shortest distance to another line and the closest points on both. Parallel lines: the closest point is this
    /// line's origin and, on the other, the point nearest to it.
    float minDistanceFromLine(const RyLine3 &other, RyVec3 &pointOnThis, RyVec3 &pointOnOther) const;
    float minDistanceFromLine(const RyLine3 &other, RyVec3 &pointOnThis) const;

private:
    RyVec3 m_origin;
    RyVec3 m_direction;
};
