#include "rycore/mesh/RyWideFacet.h"

#include <cmath>

namespace {

using Way = RyWideFacet::Way;

/// A point so near to a facet lies on it, in units of the cage's size: what single precision cannot tell from it.
constexpr double Touching = 1e-10;
/// So far beyond an edge a point on the facet's plane still belongs to it, in parts of the facet.
constexpr double Beyond = 1e-7;
constexpr int Middle = 4; // number of the corner that is the mean of the others
constexpr double Pi = 3.14159265358979323846;

double dot(const Way &a, const Way &b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Way cross(const Way &a, const Way &b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

double length(const Way &a)
{
    return std::sqrt(dot(a, a));
}

Way unit(const Way &a)
{
    const double by = 1.0 / length(a);
    return {a.x * by, a.y * by, a.z * by};
}

} // namespace

RyWideFacet::RyWideFacet(const Way *corners, int count) : m_count(count)
{
    Way middle = {};
    for (int k = 0; k < count; ++k) {
        middle.x += corners[k].x / count;
        middle.y += corners[k].y / count;
        middle.z += corners[k].z / count;
    }
    constexpr int Whole[] = {0, 1, 2};
    const int triangles = count == 4 ? 4 : 1;
    for (int k = 0; k < triangles; ++k) {
        const int fan[] = {Middle, k, (k + 1) % 4};
        const int *numbers = count == 4 ? fan : Whole;
        const Way ways[] = {numbers[0] == Middle ? middle : corners[numbers[0]], corners[numbers[1]],
                            corners[numbers[2]]};
        if (touchTriangle(ways, numbers))
            return;
        addTriangle(ways, numbers);
    }
}

void RyWideFacet::give(int corner, double share)
{
    if (corner != Middle) {
        m_shares[corner] += share;
        return;
    }
    for (int k = 0; k < m_count; ++k)
        m_shares[k] += share / m_count;
}

bool RyWideFacet::touchTriangle(const Way *ways, const int *corners)
{
    const Way normals[] = {cross(ways[1], ways[2]), cross(ways[2], ways[0]), cross(ways[0], ways[1])};
    const Way whole = {normals[0].x + normals[1].x + normals[2].x, normals[0].y + normals[1].y + normals[2].y,
                       normals[0].z + normals[1].z + normals[2].z};
    const double square = dot(whole, whole);
    if (!(square > 0.0) || std::abs(dot(ways[0], whole)) > Touching * std::sqrt(square))
        return false;
    double parts[3];
    double sum = 0.0;
    for (int k = 0; k < 3; ++k) {
        parts[k] = dot(normals[k], whole) / square;
        if (parts[k] < -Beyond)
            return false;
        parts[k] = parts[k] > 0.0 ? parts[k] : 0.0;
        sum += parts[k];
    }
    m_isTouched = true;
    for (double &share : m_shares)
        share = 0.0;
    for (int k = 0; k < 3; ++k)
        give(corners[k], parts[k] / sum);
    return true;
}

void RyWideFacet::addTriangle(const Way *ways, const int *corners)
{
    for (int k = 0; k < 3; ++k) {
        if (!(length(ways[k]) > 0.0))
            return; // at a corner of a triangle without area
    }
    const Way u[] = {unit(ways[0]), unit(ways[1]), unit(ways[2])};
    Way n[3]; // across the edge that lies opposite to the corner
    Way mean = {};
    double angles = 0.0, squares = 0.0;
    for (int k = 0; k < 3; ++k) {
        const Way &from = u[(k + 1) % 3];
        const Way &to = u[(k + 2) % 3];
        n[k] = cross(from, to);
        const double sine = length(n[k]);
        const double angle = std::atan2(sine, dot(from, to));
        const double by = sine > 0.0 ? angle / sine : 1.0;
        mean.x += by * n[k].x;
        mean.y += by * n[k].y;
        mean.z += by * n[k].z;
        angles += angle;
        squares += sine * sine;
    }
    const double determinant = dot(u[0], n[0]);
    // Above the facet the angles come to a full turn and the shares grow; beside it, on its plane, there are none.
    const double least = angles > 1.5 * Pi ? 0.0 : 1e-8 * squares;
    const double divisor = determinant * determinant + least * least;
    if (!(divisor > 0.0))
        return;
    for (int k = 0; k < 3; ++k)
        give(corners[k], dot(mean, n[k]) * determinant / divisor / length(ways[k]));
}
