#include "rycore/math/RyBox3.h"

#include <algorithm>

RyBox3::RyBox3(const RyVec3 &min, const RyVec3 &max) : m_min(min), m_max(max), m_empty(false) {}

void RyBox3::include(const RyVec3 &p)
{
    if (m_empty) {
        *this = RyBox3(p, p);
        return;
    }
    for (int i = 0; i < 3; ++i) {
        m_min[i] = std::min(m_min[i], p[i]);
        m_max[i] = std::max(m_max[i], p[i]);
    }
}

void RyBox3::include(const RyBox3 &box)
{
    if (box.m_empty)
        return;
    include(box.m_min);
    include(box.m_max);
}
