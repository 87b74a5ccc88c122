#include "rycore/scene/RyShapeTriangles.h"

#include "rycore/scene/ryWalkTriangles.h"

template<typename Key>
void RyShapeTriangles::Lists::build(const std::vector<RyTriangleCorner> &corners, int count, Key key)
{
    starts.assign(size_t(count) + 1, 0);
    triangles.resize(corners.size());
    for (const RyTriangleCorner &corner : corners)
        ++starts[size_t(key(corner)) + 1];
    for (size_t i = 1; i < starts.size(); ++i)
        starts[i] += starts[i - 1];
    std::vector<int> next(starts.begin(), starts.end() - 1);
    for (size_t i = 0; i < corners.size(); ++i)
        triangles[size_t(next[size_t(key(corners[i]))]++)] = int(i / 3);
}

void RyShapeTriangles::build(const RyFacetMesh &mesh, const RyMeshParts *parts, const std::vector<int> &placeOfNumber,
                             int placeCount)
{
    m_corners.clear();
    ryWalkTriangles(mesh, parts, placeOfNumber, [this](const RyTriangleCorner *corners) {
        m_corners.insert(m_corners.end(), corners, corners + 3);
    });
    m_ofVertices.build(m_corners, mesh.getNumVertices(), [](const RyTriangleCorner &corner) { return corner.vertex; });
    m_ofPlaces.build(m_corners, placeCount, [](const RyTriangleCorner &corner) { return corner.place; });
}
