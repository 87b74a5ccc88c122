#include "rycore/io/RyPartPolygons.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyMeshPart.h"

#include <algorithm>

RyPartPolygons::RyPartPolygons(const RyFacetMesh &mesh, const RyMeshParts &parts)
    : m_mesh(mesh), m_parts(parts), m_facets(parts.facetsByPart())
{}

void RyPartPolygons::forNextPart(const std::function<void(const RyPartPolygon &)> &work)
{
    const RyMeshPart &part = m_parts.parts[m_nextPart++];
    const size_t end = m_nextFacet + size_t(part.facetCount);
    m_polygon.firstTriangle = 0;
    while (m_nextFacet < end) {
        m_polygon.firstFacet = m_facets[m_nextFacet];
        m_polygon.facetCount = m_mesh.readPolygon(m_polygon.firstFacet, m_corners);
        const size_t last = m_nextFacet + size_t(m_polygon.facetCount) - 1;
        if (last >= end || m_facets[last] != m_polygon.firstFacet + m_polygon.facetCount - 1) { // of several parts
            const RyFacet &facet = m_mesh.getFacet(m_polygon.firstFacet);
            m_polygon.facetCount = 1;
            m_corners.assign(facet.vertices, facet.vertices + facet.count());
        }
        const unsigned *triangle = &part.triangles[3 * size_t(m_polygon.firstTriangle)];
        m_polygon.splits.assign(triangle, triangle + 3);
        for (size_t corner = 3; corner < m_corners.size(); ++corner)
            m_polygon.splits.push_back((triangle += 3)[2]);
        findFirstCorner(part);
        work(m_polygon);
        m_nextFacet += size_t(m_polygon.facetCount);
        m_polygon.firstTriangle += int(m_corners.size()) - 2;
    }
}

/// The fan may start at another corner than the polygon.
void RyPartPolygons::findFirstCorner(const RyMeshPart &part)
{
    std::vector<unsigned> &splits = m_polygon.splits;
    const size_t count = splits.size();
    const auto startsAt = [&](size_t first) {
        for (size_t i = 0; i < count; ++i) {
            if (part.vertexOfSplit[splits[(first + i) % count]] != m_corners[i])
                return false;
        }
        return true;
    };
    size_t first = 0;
    while (first < count && !startsAt(first))
        ++first;
    m_polygon.firstCorner = int(first % count);
    std::rotate(splits.begin(), splits.begin() + m_polygon.firstCorner, splits.end());
}
