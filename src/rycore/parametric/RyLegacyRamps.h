#pragma once

#include "rycore/math/RyFastMath.h"

#include <algorithm>
#include <cmath>

/// The ramps and angles that all weights of joint parameters are made of, in double precision. Angles are radians.
namespace RyLegacyRamps {

/// S(u) = u^2 (3 - 2u), with u clamped to 0..1: level at both ends.
inline double smooth(double u)
{
    u = std::clamp(u, 0.0, 1.0);
    return u * u * (3.0 - 2.0 * u);
}

/// 0 at `start`, 1 at `end`, which may lie below it. Both alike: 0 below, 1 from there on.
inline double between(double x, double start, double end)
{
    return start == end ? (x < start ? 0.0 : 1.0) : smooth((x - start) / (end - start));
}

/// The same angle in [0, 2 pi).
inline double wrapUp(double t)
{
    constexpr double Turn = 2.0 * RyFastMath::Pi;
    const double up = t - Turn * std::floor(t / Turn);
    return up < Turn ? up : 0.0;
}

/// The same angle in (-pi, pi].
inline double wrap(double t)
{
    const double up = wrapUp(t);
    return up > RyFastMath::Pi ? up - 2.0 * RyFastMath::Pi : up;
}

} // namespace RyLegacyRamps
