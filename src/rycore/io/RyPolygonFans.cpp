#include "rycore/io/RyPolygonFans.h"

#include <algorithm>
#include <array>
#include <limits>

namespace {

using Vector = std::array<double, 3>;

/// Twice the area of a triangle along its normal.
Vector areaOf(const RyVec3 &a, const RyVec3 &b, const RyVec3 &c)
{
    const Vector u{double(b.x) - double(a.x), double(b.y) - double(a.y), double(b.z) - double(a.z)};
    const Vector v{double(c.x) - double(a.x), double(c.y) - double(a.y), double(c.z) - double(a.z)};
    return {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]};
}

double dot(const Vector &a, const Vector &b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

/// The area of the whole polygon, whatever it is cut into.
Vector areaOf(const std::vector<RyVec3> &positions)
{
    Vector sum{0, 0, 0};
    for (size_t i = 1; i + 1 < positions.size(); ++i) {
        const Vector area = areaOf(positions[0], positions[i], positions[i + 1]);
        for (size_t axis = 0; axis < 3; ++axis)
            sum[axis] += area[axis];
    }
    return sum;
}

/// The smallest area of a triangle of the fan as a share of the polygon's; below zero where one folds over.
double smallestShare(const std::vector<RyVec3> &positions, size_t start, const Vector &whole)
{
    const double size = dot(whole, whole);
    if (!(size > 0.0))
        return 0.0;
    double smallest = std::numeric_limits<double>::infinity();
    const size_t count = positions.size();
    for (size_t i = 1; i + 1 < count; ++i) {
        const Vector area =
            areaOf(positions[start], positions[(start + i) % count], positions[(start + i + 1) % count]);
        smallest = std::min(smallest, dot(area, whole) / size);
    }
    return smallest;
}

} // namespace

int RyPolygonFans::add(const std::vector<unsigned> &corners, const std::vector<RyVec3> &positions)
{
    constexpr double Flat = -1e-6; // corners on a line
    constexpr size_t MostStarts = 16;
    const size_t count = corners.size();
    const Vector whole = areaOf(positions);
    size_t start = count;
    double best = -std::numeric_limits<double>::infinity();
    for (size_t i = 0; i < std::min(count, MostStarts) && best < Flat; ++i) {
        if (m_hasLast && corners[i] == m_last)
            continue;
        const double share = smallestShare(positions, i, whole);
        if (share > best) {
            start = i;
            best = share;
        }
    }
    unsigned first = 0;
    if (start < count) {
        first = corners[start];
    } else { // the last one's start is all that was tried
        start = 0;
        first = m_indexCount + unsigned(copies.size());
        copies.push_back(corners[0]);
        best = smallestShare(positions, start, whole);
    }
    m_isFolded = best < Flat;
    for (size_t i = 1; i + 1 < count; ++i)
        triangles.insert(triangles.end(), {first, corners[(start + i) % count], corners[(start + i + 1) % count]});
    m_hasLast = true;
    m_last = first;
    return int(start);
}

size_t RyPolygonFans::runAt(const std::vector<unsigned> &triangles, size_t first)
{
    const size_t count = triangles.size() / 3;
    size_t end = first + 1;
    while (end < count && triangles[3 * end] == triangles[3 * first] &&
           triangles[3 * end + 1] == triangles[3 * (end - 1) + 2])
        ++end;
    return end - first;
}
