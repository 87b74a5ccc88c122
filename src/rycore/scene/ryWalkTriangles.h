#pragma once

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyMeshPart.h"
#include "rycore/scene/RyShapeTriangles.h"

#include <algorithm>

/// Calls `visit` with the three corners of each triangle that has a share in the smooth normals of a shape, in order:
/// the triangles of its parts, or without parts (null) those of its facets, where each vertex has one normal.
/// `placeOfNumber` gives the place of a number of RyMeshPart::normalOfSplit.
template<typename Visit>
void ryWalkTriangles(const RyFacetMesh &mesh, const RyMeshParts *parts, const std::vector<int> &placeOfNumber,
                     Visit visit)
{
    const int vertexCount = mesh.getNumVertices();
    RyTriangleCorner corners[3];
    if (!parts) {
        for (const RyFacet &facet : mesh.getFacets()) {
            const int count = facet.count();
            if (std::any_of(facet.vertices, facet.vertices + count, [&](int v) { return v < 0 || v >= vertexCount; }))
                continue;
            for (int corner = 2; corner < count; ++corner) {
                const int vertices[3] = {facet.vertices[0], facet.vertices[corner - 1], facet.vertices[corner]};
                for (int c = 0; c < 3; ++c)
                    corners[c] = {vertices[c], vertices[c]};
                visit(corners);
            }
        }
        return;
    }
    for (const RyMeshPart &part : parts->parts) {
        for (size_t i = 0; i + 2 < part.triangles.size(); i += 3) {
            for (int c = 0; c < 3; ++c) {
                const size_t split = part.triangles[i + size_t(c)];
                corners[c] = {std::clamp(part.vertexOfSplit[split], 0, vertexCount - 1),
                              placeOfNumber[size_t(part.normalOfSplit[split])]};
            }
            visit(corners);
        }
    }
}
