#include "rycore/scene/RyShapeNormals.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyMeshPart.h"
#include "rycore/scene/RyPointChanges.h"

#include <algorithm>

namespace {

/// Twice the area times the normal.
RyVec3 areaNormal(const RyVec3 &a, const RyVec3 &b, const RyVec3 &c)
{
    const RyVec3 u = b - a;
    const RyVec3 v = c - a;
    return {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
}

} // namespace

void RyShapeNormals::update(const RyFacetMesh &mesh, const std::shared_ptr<const RyMeshParts> &parts)
{
    const int vertexCount = mesh.getNumVertices();
    const bool otherPlaces = parts != m_parts || vertexCount != m_vertexCount;
    if (!otherPlaces && mesh.revision() == m_meshRevision)
        return;
    m_meshRevision = mesh.revision();
    m_revision = RyPointChanges::nextRevision();
    if (otherPlaces) {
        m_parts = parts;
        m_vertexCount = vertexCount;
        m_layoutRevision = m_revision;
        assignPlaces(vertexCount);
    }
    sumFacets(mesh);
}

int RyShapeNormals::placeOf(int number) const
{
    if (m_placeOfNumber.empty())
        return number;
    return number >= 0 && number < int(m_placeOfNumber.size()) ? m_placeOfNumber[size_t(number)] : 0;
}

void RyShapeNormals::assignPlaces(int vertexCount)
{
    m_vertexOfFurther.clear();
    m_placeOfNumber.clear();
    if (!m_parts || m_parts->parts.empty() || vertexCount == 0)
        return;
    m_placeOfNumber.assign(size_t(std::max(m_parts->normalCount, 1)), -1);
    std::vector<char> taken(size_t(vertexCount), 0);
    for (const RyMeshPart &part : m_parts->parts) {
        for (size_t split = 0; split < part.normalOfSplit.size(); ++split) {
            int &place = m_placeOfNumber[size_t(part.normalOfSplit[split])];
            if (place >= 0)
                continue;
            const int vertex = std::clamp(part.vertexOfSplit[split], 0, vertexCount - 1);
            if (taken[size_t(vertex)]) {
                place = vertexCount + int(m_vertexOfFurther.size());
                m_vertexOfFurther.push_back(vertex);
            } else {
                taken[size_t(vertex)] = 1;
                place = vertex;
            }
        }
    }
    std::replace(m_placeOfNumber.begin(), m_placeOfNumber.end(), -1, 0);
}

void RyShapeNormals::sumFacets(const RyFacetMesh &mesh)
{
    const std::vector<RyVec3> &positions = mesh.getPositions();
    m_normals.assign(size_t(m_vertexCount) + m_vertexOfFurther.size(), RyVec3());
    if (m_placeOfNumber.empty()) {
        for (const RyFacet &facet : mesh.getFacets()) {
            const int corners = facet.count();
            if (std::any_of(facet.vertices, facet.vertices + corners,
                            [&](int v) { return v < 0 || v >= m_vertexCount; }))
                continue;
            const auto at = [&](int corner) -> const RyVec3 & { return positions[size_t(facet.vertices[corner])]; };
            for (int corner = 2; corner < corners; ++corner) {
                const RyVec3 normal = areaNormal(at(0), at(corner - 1), at(corner));
                for (int c : {0, corner - 1, corner})
                    m_normals[size_t(facet.vertices[c])] += normal;
            }
        }
    } else {
        for (const RyMeshPart &part : m_parts->parts) {
            const auto at = [&](unsigned split) -> const RyVec3 & {
                return positions[size_t(std::clamp(part.vertexOfSplit[split], 0, m_vertexCount - 1))];
            };
            for (size_t i = 0; i + 2 < part.triangles.size(); i += 3) {
                const unsigned *corner = &part.triangles[i];
                const RyVec3 normal = areaNormal(at(corner[0]), at(corner[1]), at(corner[2]));
                for (int c = 0; c < 3; ++c)
                    m_normals[size_t(m_placeOfNumber[size_t(part.normalOfSplit[corner[c]])])] += normal;
            }
        }
    }
    for (RyVec3 &normal : m_normals)
        normal = normal / std::sqrt(normal.x * normal.x + normal.y * normal.y + normal.z * normal.z);
}
