#include "rycore/scene/RyMeshPart.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyNormalSource.h"

#include <algorithm>
#include <numeric>

std::vector<RyVec3> RyMeshPart::readNormals() const
{
    return normalSource ? normalSource->normals() : normals;
}

std::vector<RyMeshParts::Run> RyMeshParts::runs() const
{
    if (!order.empty())
        return order;
    std::vector<Run> result;
    for (size_t place = 0; place < parts.size(); ++place)
        result.push_back({int(place), parts[place].facetCount});
    return result;
}

std::vector<int> RyMeshParts::facetsByPart() const
{
    std::vector<int> next; // where the next facet of a part goes
    int count = 0;
    for (const RyMeshPart &part : parts) {
        next.push_back(count);
        count += part.facetCount;
    }
    std::vector<int> facets(static_cast<size_t>(count));
    if (order.empty()) {
        std::iota(facets.begin(), facets.end(), 0);
        return facets;
    }
    int facet = 0;
    for (const Run &run : order) {
        for (int i = 0; i < run.facetCount; ++i)
            facets[size_t(next[size_t(run.part)]++)] = facet++;
    }
    return facets;
}

bool RyMeshParts::fits(const RyFacetMesh &mesh) const
{
    size_t facetCount = 0;
    for (const RyMeshPart &part : parts) {
        facetCount += size_t(part.facetCount);
        for (const int vertex : part.vertexOfSplit) {
            if (vertex < 0 || vertex >= mesh.getNumVertices())
                return false;
        }
    }
    if (parts.empty() || facetCount != size_t(mesh.getNumFacets()))
        return false;
    std::vector<size_t> corners(parts.size(), 0);
    int facet = 0;
    for (const Run &run : runs()) {
        if (run.facetCount > mesh.getNumFacets() - facet)
            return false;
        for (const int end = facet + run.facetCount; facet < end; ++facet)
            corners[size_t(run.part)] += 3 * size_t(mesh.getFacet(facet).count() - 2);
    }
    return std::equal(parts.begin(), parts.end(), corners.begin(),
                      [](const RyMeshPart &part, size_t count) { return part.triangles.size() == count; });
}
