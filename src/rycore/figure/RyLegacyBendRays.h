#pragma once

#include "rycore/math/RyVec3.h"

#include <array>

class RyLegacyBendParam;

/// The four rays of a bend, A, B, C and D, in degrees within (-180, 180], as its controllers hold them.
struct RyLegacyBendRays
{
    std::array<float, 4> degrees{};
    /// The same rays, to a hundredth of a degree.
    bool isNear(const RyLegacyBendRays &other) const;

    /// The rays as far before and behind the one that points along `direction` (in bone axes, as near as a turn about
    /// `bendAxis` gets): the static ones by `staticSpread`, the dynamic ones by `dynamicSpread`.
    static RyLegacyBendRays around(int bendAxis, const RyVec3 &direction, double staticSpread, double dynamicSpread);
    /// Of a new bone, which lies along its first axis, forwards or backwards.
    static RyLegacyBendRays ofNewBone(int firstAxis, int bendAxis, bool forward);
    static RyLegacyBendRays of(const RyLegacyBendParam &bend, bool byDefault = false);
    /// The current values, and the defaults where asked.
    void writeTo(RyLegacyBendParam &bend, bool asDefault) const;
};
