#pragma once

#include "rycore/math/RyMatrix3.h"
#include "rycore/math/RyVec3.h"

/// An axis-aligned box; empty until a point is added. The centre, extents and size of an empty box are zero.
class RyBox3
{
public:
    RyBox3() = default;
    RyBox3(const RyVec3 &min, const RyVec3 &max);

    bool isEmpty() const { return m_empty; }
    const RyVec3 &getMin() const { return m_min; }
    const RyVec3 &getMax() const { return m_max; }
    void include(const RyVec3 &p);
    void include(const RyBox3 &box);

    RyVec3 getCenter() const { return (m_min + m_max) * 0.5f; }
    /// Full lengths along X, Y and Z.
    RyVec3 getExtents() const { return m_max - m_min; }
    /// Length of the diagonal.
    float getSize() const { return getExtents().length(); }

private:
    RyVec3 m_min;
    RyVec3 m_max;
    bool m_empty = true;
};

/// A box in a frame of its own: `point = corner * transform`.
class RyOrientedBox3
{
public:
    RyBox3 box;
    RyMatrix3 transform;
};
