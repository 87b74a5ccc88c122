#include "rycore/viewport/picking/RyMeshRayCaster.h"

#include "rycore/mesh/RyFacetMesh.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

constexpr int RunLength = 48;

/// Distance along the ray to a triangle, negative when it is missed.
double meetTriangle(const RyVec3 &a, const RyVec3 &b, const RyVec3 &c, const RyVec3 &origin, const RyVec3 &direction)
{
    const RyVec3 ab = b - a;
    const RyVec3 ac = c - a;
    const RyVec3 p = direction.cross(ac);
    const double determinant = double(ab.x) * p.x + double(ab.y) * p.y + double(ab.z) * p.z;
    if (std::abs(determinant) < 1e-14)
        return -1.0;
    const RyVec3 s = origin - a;
    const double u = (double(s.x) * p.x + double(s.y) * p.y + double(s.z) * p.z) / determinant;
    if (u < 0.0 || u > 1.0)
        return -1.0;
    const RyVec3 q = s.cross(ab);
    const double v = (double(direction.x) * q.x + double(direction.y) * q.y + double(direction.z) * q.z) / determinant;
    if (v < 0.0 || u + v > 1.0)
        return -1.0;
    return (double(ac.x) * q.x + double(ac.y) * q.y + double(ac.z) * q.z) / determinant;
}

} // namespace

void RyMeshRayCaster::clear()
{
    m_mesh = nullptr;
    m_facetCount = -1;
    m_positions.clear();
    m_runs.clear();
}

void RyMeshRayCaster::update(RyFacetMesh *mesh, const std::vector<RyVec3> &positions)
{
    if (!mesh || int(positions.size()) != mesh->getNumVertices()) {
        clear();
        return;
    }
    if (mesh == m_mesh && mesh->getNumFacets() == m_facetCount && positions.size() == m_positions.size() &&
        (positions.empty() ||
         std::memcmp(positions.data(), m_positions.data(), positions.size() * sizeof(RyVec3)) == 0))
        return;
    m_mesh = mesh;
    m_facetCount = mesh->getNumFacets();
    m_positions = positions;
    m_runs.clear();
    for (int first = 0; first < m_facetCount; first += RunLength) {
        constexpr float Huge = std::numeric_limits<float>::max();
        Run run{RyVec3(Huge, Huge, Huge), RyVec3(-Huge, -Huge, -Huge)};
        for (int f = first; f < std::min(first + RunLength, m_facetCount); ++f) {
            const RyFacet &facet = mesh->getFacet(f);
            for (int corner = 0; corner < facet.count(); ++corner) {
                const RyVec3 &p = positions[size_t(facet.vertices[corner])];
                for (int axis = 0; axis < 3; ++axis) {
                    run.min[axis] = std::min(run.min[axis], p[axis]);
                    run.max[axis] = std::max(run.max[axis], p[axis]);
                }
            }
        }
        m_runs.push_back(run);
    }
}

bool RyMeshRayCaster::meetsBox(const Run &run, const double origin[3], const double inverse[3], double limit) const
{
    double enter = 0.0;
    double leave = limit;
    for (int axis = 0; axis < 3; ++axis) {
        const double a = (double(run.min[axis]) - origin[axis]) * inverse[axis];
        const double b = (double(run.max[axis]) - origin[axis]) * inverse[axis];
        enter = std::max(enter, std::min(a, b));
        leave = std::min(leave, std::max(a, b));
    }
    return enter <= leave * (1.0 + 1e-9) + 1e-6;
}

int RyMeshRayCaster::cast(const RyLine3 &ray, double &distance) const
{
    if (!m_mesh || m_mesh->getNumFacets() != m_facetCount)
        return -1;
    const RyVec3 origin = ray.getOrigin();
    const RyVec3 direction = ray.getDirection();
    double from[3];
    double inverse[3];
    for (int axis = 0; axis < 3; ++axis) {
        from[axis] = origin[axis];
        inverse[axis] = direction[axis] != 0.0f ? 1.0 / direction[axis] : 1e30;
    }
    int best = -1;
    double nearest = std::numeric_limits<double>::max();
    for (size_t r = 0; r < m_runs.size(); ++r) {
        if (!meetsBox(m_runs[r], from, inverse, nearest))
            continue;
        const int first = int(r) * RunLength;
        for (int f = first; f < std::min(first + RunLength, m_facetCount); ++f) {
            const RyFacet &facet = m_mesh->getFacet(f);
            for (int corner = 2; corner < facet.count(); ++corner) {
                const double t = meetTriangle(m_positions[size_t(facet.vertices[0])],
                                              m_positions[size_t(facet.vertices[corner - 1])],
                                              m_positions[size_t(facet.vertices[corner])], origin, direction);
                if (t >= 0.0 && t < nearest) {
                    nearest = t;
                    best = f;
                }
            }
        }
    }
    distance = nearest;
    return best;
}
