#pragma once

#include "rycore/math/RyVec3.h"

/// Whether two points or directions are at most so far apart.
inline bool ryIsNear(const RyVec3 &a, const RyVec3 &b, float tolerance = 1e-3f)
{
    return (a - b).length() <= tolerance;
}
