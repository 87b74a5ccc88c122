#include "rycore/viewport/drawing/RySplitMesh.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyMeshPart.h"

#include <algorithm>
#include <numeric>

RySplitMesh RySplitMesh::of(const RyFacetMesh &mesh, const RyMeshParts *parts)
{
    RySplitMesh split;
    if (parts && !parts->parts.empty())
        split.addParts(*parts, mesh.getNumVertices());
    else
        split.addFacets(mesh);
    return split;
}

void RySplitMesh::addParts(const RyMeshParts &parts, int vertexCount)
{
    const bool hasUvs =
        std::any_of(parts.parts.begin(), parts.parts.end(), [](const RyMeshPart &part) { return !part.uvs.empty(); });
    for (const RyMeshPart &part : parts.parts) {
        const auto base = unsigned(vertexOfSplit.size());
        runs.push_back({int(indices.size()), int(part.triangles.size()), part.look});
        for (unsigned corner : part.triangles)
            indices.push_back(base + corner);
        vertexOfSplit.insert(vertexOfSplit.end(), part.vertexOfSplit.begin(), part.vertexOfSplit.end());
        normalOfSplit.insert(normalOfSplit.end(), part.normalOfSplit.begin(), part.normalOfSplit.end());
        if (hasUvs) {
            uvs.insert(uvs.end(), part.uvs.begin(), part.uvs.end());
            uvs.resize(2 * vertexOfSplit.size());
        }
    }
    // A shape may have been given another mesh since its parts were read.
    for (int &vertex : vertexOfSplit)
        vertex = std::clamp(vertex, 0, vertexCount - 1);
}

void RySplitMesh::addFacets(const RyFacetMesh &mesh)
{
    vertexOfSplit.resize(size_t(mesh.getNumVertices()));
    std::iota(vertexOfSplit.begin(), vertexOfSplit.end(), 0);
    normalOfSplit = vertexOfSplit;
    for (const RyFacet &facet : mesh.getFacets()) {
        for (int corner = 2; corner < facet.count(); ++corner) {
            for (int c : {0, corner - 1, corner})
                indices.push_back(unsigned(facet.vertices[c]));
        }
    }
    runs.push_back({0, int(indices.size()), -1});
}

std::vector<unsigned> RySplitMesh::edgesOf(const RyFacetMesh &mesh)
{
    std::vector<unsigned> edges;
    for (int f = 0; f < mesh.getNumFacets(); ++f) {
        const RyFacet &facet = mesh.getFacet(f);
        for (int e = 0; e < facet.count(); ++e) {
            const int neighbour = mesh.getNeighbour(f, e);
            if (neighbour >= 0 && neighbour < f)
                continue;
            edges.push_back(unsigned(facet.vertices[e]));
            edges.push_back(unsigned(facet.vertices[(e + 1) % facet.count()]));
        }
    }
    return edges;
}
