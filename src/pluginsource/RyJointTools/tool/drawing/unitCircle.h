#pragma once

#include "rycore/math/RyFastMath.h"

#include <array>

struct RyCirclePoint
{
    float sine, cosine;
};

/// So many points of the unit circle, counted from angle 0.
template<size_t Count>
const std::array<RyCirclePoint, Count> &unitCircle()
{
    static const std::array<RyCirclePoint, Count> circle = [] {
        std::array<RyCirclePoint, Count> points{};
        for (size_t i = 0; i < Count; ++i) {
            const double angle = 2.0 * RyFastMath::Pi * double(i) / double(Count);
            points[i] = {float(std::sin(angle)), float(std::cos(angle))};
        }
        return points;
    }();
    return circle;
}
