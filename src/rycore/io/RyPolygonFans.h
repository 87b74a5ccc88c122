#pragma once

#include "rycore/math/RyVec3.h"

#include <vector>

/// Cuts polygons into triangles from which the polygons can be told again: each is a fan from one index, and the next
/// polygon starts at another one. Triangles that follow one another from one index, each beginning where the one before
/// ended, are one polygon.
class RyPolygonFans
{
public:
    /// `indexCount`: how many indices there are; copies are numbered from there on.
    explicit RyPolygonFans(unsigned indexCount) : m_indexCount(indexCount) {}

    /// Adds a polygon of three corners or more; gives the corner that its fan starts at. It is one from which no
    /// triangle folds over, as far as there is one.
    int add(const std::vector<unsigned> &corners, const std::vector<RyVec3> &positions);
    std::vector<unsigned> triangles;
    /// Whether a triangle of the polygon that was added last folds over.
    bool isFolded() const { return m_isFolded; }
    /// Indices of which a copy had to be made: a polygon that has one index only, behind another one of it.
    std::vector<unsigned> copies;

    /// How many triangles the polygon has that begins with triangle `first`.
    static size_t runAt(const std::vector<unsigned> &triangles, size_t first);

private:
    unsigned m_indexCount;
    bool m_hasLast = false;
    bool m_isFolded = false;
    unsigned m_last = 0; // where the last fan starts
};
