#pragma once

#include <functional>
#include <vector>

class RyFacetMesh;
struct RyMeshPart;
struct RyMeshParts;

/// A polygon of any number of corners, as a part of a mesh has it.
struct RyPartPolygon
{
    int firstFacet = 0; // of the mesh
    int facetCount = 1;
    int firstTriangle = 0;        // of the part
    int firstCorner = 0;          // counted from the one that its fan starts at
    std::vector<unsigned> splits; // split vertices of its corners, from the first one on

    /// A corner counted from the one that its fan starts at.
    unsigned inFan(int corner) const
    {
        const int count = int(splits.size());
        return splits[size_t((corner - firstCorner + count) % count)];
    }
};

/// Goes through the polygons of a mesh, part by part.
class RyPartPolygons
{
public:
    /// The parts fit the mesh.
    RyPartPolygons(const RyFacetMesh &mesh, const RyMeshParts &parts);

    /// Those of the next part, in their order.
    void forNextPart(const std::function<void(const RyPartPolygon &)> &work);

private:
    void findFirstCorner(const RyMeshPart &part);

    const RyFacetMesh &m_mesh;
    const RyMeshParts &m_parts;
    std::vector<int> m_facets; // part by part
    size_t m_nextFacet = 0;    // of them
    size_t m_nextPart = 0;
    RyPartPolygon m_polygon;
    std::vector<int> m_corners; // of the mesh, from the first one on
};
