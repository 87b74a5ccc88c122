#pragma once

#include <vector>

class RyFacetMesh;
struct RyMeshParts;

/// The triangles of a mesh as a graphics card wants them: corners that differ in texture coordinates or in normal are
/// vertices of their own.
struct RySplitMesh
{
    /// Triangles that look alike.
    struct Run
    {
        int firstIndex = 0;
        int indexCount = 0;
        int look = -1; // into RyMeshParts::looks, -1 for none
    };

    /// As the parts have it; without parts every vertex of the mesh stands for itself.
    static RySplitMesh of(const RyFacetMesh &mesh, const RyMeshParts *parts);
    /// Pairs of vertices of the mesh, each edge of a facet once.
    static std::vector<unsigned> edgesOf(const RyFacetMesh &mesh);

    std::vector<int> vertexOfSplit; // vertices of the mesh
    std::vector<int> normalOfSplit; // splits with equal numbers share a smooth normal
    std::vector<unsigned> indices;  // three splits each
    std::vector<Run> runs;
    std::vector<float> uvs; // two for each split; empty without texture coordinates

private:
    void addParts(const RyMeshParts &parts, int vertexCount);
    void addFacets(const RyFacetMesh &mesh);
};
