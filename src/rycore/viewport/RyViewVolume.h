#pragma once

#include "rycore/math/RyVec3.h"

/// What the current context can show, read from it once for a whole drawing: its matrices, its viewport and, while the
/// scissor test is on, its scissor box. Places are in the space of the modelview matrix of that moment.
class RyViewVolume
{
public:
    static RyViewVolume ofContext();

    /// False when no pixel can show any of a box, nor of lines in it as wide as the context draws them.
    bool reaches(const RyVec3 &center, const RyVec3 (&halfAxes)[3]) const;
    bool reachesLine(const RyVec3 &from, const RyVec3 &to) const;
    /// Length that covers so many pixels (logical) at a place.
    float lengthOf(float pixels, const RyVec3 &place) const;

private:
    /// A sum of products with a place, the last number alone: for a side of the volume negative outside.
    using Row = double[4];
    static double at(const Row &row, const RyVec3 &place);
    static double along(const Row &row, const RyVec3 &direction);

    static constexpr int sideCount = 5; // left, right, bottom, top, near
    Row m_sides[sideCount];
    Row m_scale;       // how many times as long a pixel is as at scale 1
    double m_perPixel; // length of a pixel (logical) at scale 1
    bool m_isEmpty;
};
