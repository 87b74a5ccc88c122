#include "rycore/scene/RyShapeNormals.h"

#include "rycore/scene/ryWalkTriangles.h"

#include <algorithm>

namespace {

/// Where more than one in so many vertices moved, all normals are made: finding those around costs more.
constexpr int WholeFrom = 4;

/// Twice the area times the normal.
RyVec3 areaNormal(const RyTriangleCorner *corners, const std::vector<RyVec3> &positions)
{
    const RyVec3 &a = positions[size_t(corners[0].vertex)];
    const RyVec3 u = positions[size_t(corners[1].vertex)] - a;
    const RyVec3 v = positions[size_t(corners[2].vertex)] - a;
    return {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
}

RyVec3 unit(const RyVec3 &normal)
{
    return normal / std::sqrt(normal.x * normal.x + normal.y * normal.y + normal.z * normal.z);
}

} // namespace

void RyShapeNormals::update(const RyFacetMesh &mesh, const std::shared_ptr<const RyMeshParts> &parts)
{
    static const RyPointChanges unknown;
    update(mesh, parts, mesh.getPositions(), unknown);
}

void RyShapeNormals::update(const RyFacetMesh &mesh, const std::shared_ptr<const RyMeshParts> &parts,
                            const std::vector<RyVec3> &positions, const RyPointChanges &changes)
{
    const int vertexCount = mesh.getNumVertices();
    const bool otherPlaces = parts != m_parts || vertexCount != m_vertexCount;
    const bool otherMesh = otherPlaces || mesh.revision() != m_meshRevision;
    if (!otherMesh && changes.revision() == m_positionsRevision)
        return;
    const quint64 positionsBefore = m_positionsRevision;
    m_meshRevision = mesh.revision();
    m_positionsRevision = changes.revision();
    if (otherPlaces) {
        m_parts = parts;
        m_vertexCount = vertexCount;
        m_layoutRevision = RyPointChanges::nextRevision();
        assignPlaces(vertexCount);
    }
    if (otherMesh) {
        m_triangles = RyShapeTriangles();
        sumAll(mesh, positions);
        return;
    }
    const std::vector<RyPointChanges::Range> moved = changes.since(positionsBefore);
    qint64 movedCount = 0;
    for (const RyPointChanges::Range &range : moved)
        movedCount += range.count;
    if (movedCount * WholeFrom > vertexCount)
        sumAll(mesh, positions);
    else
        sumAround(moved, mesh, positions);
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

void RyShapeNormals::sumAll(const RyFacetMesh &mesh, const std::vector<RyVec3> &positions)
{
    m_normals.assign(size_t(m_vertexCount) + m_vertexOfFurther.size(), RyVec3());
    ryWalkTriangles(mesh, partsWithNormals(), m_placeOfNumber, [&](const RyTriangleCorner *corners) {
        const RyVec3 normal = areaNormal(corners, positions);
        for (int c = 0; c < 3; ++c)
            m_normals[size_t(corners[c].place)] += normal;
    });
    for (RyVec3 &normal : m_normals)
        normal = unit(normal);
    m_lastTouched = qint64(m_normals.size());
    m_changes.markAll(int(m_normals.size()));
}

/// Each is summed in the order of all triangles, so that it comes out as when all are made.
void RyShapeNormals::sumAround(const std::vector<RyPointChanges::Range> &vertices, const RyFacetMesh &mesh,
                               const std::vector<RyVec3> &positions)
{
    if (m_triangles.isEmpty())
        m_triangles.build(mesh, partsWithNormals(), m_placeOfNumber, int(m_normals.size()));
    std::vector<int> places;
    m_isListed.resize(m_normals.size(), 0);
    for (const RyPointChanges::Range &range : vertices) {
        for (int vertex = range.first; vertex < range.first + range.count; ++vertex) {
            for (const int triangle : m_triangles.aroundVertex(vertex)) {
                for (int c = 0; c < 3; ++c) {
                    const int place = m_triangles.corners(triangle)[c].place;
                    if (!m_isListed[size_t(place)])
                        places.push_back(place);
                    m_isListed[size_t(place)] = 1;
                }
            }
        }
    }
    m_changes.begin();
    for (const int place : places) {
        RyVec3 sum;
        for (const int triangle : m_triangles.ofPlace(place))
            sum += areaNormal(m_triangles.corners(triangle), positions);
        m_normals[size_t(place)] = unit(sum);
        m_isListed[size_t(place)] = 0;
        m_changes.mark(place, 1);
    }
    m_lastTouched = qint64(places.size());
}
