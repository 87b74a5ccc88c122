#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

struct aiMesh;
class RyForeignInfluences;

/// Joins the corners of a mesh: the importers' library gives each corner of each polygon a vertex of its own. Those
/// that agree in all that they hold are one.
class RyForeignCorners
{
public:
    /// `influences`: null for a mesh that no skin moves.
    RyForeignCorners(const aiMesh &mesh, const RyForeignInfluences *influences);

    std::vector<std::uint32_t> firsts;   // a corner of the mesh for each vertex
    std::vector<std::uint32_t> vertexOf; // per corner of the mesh

private:
    struct Array
    {
        const char *bytes;
        size_t stride;
        size_t size; // that counts, a multiple of four and at least eight
    };

    void findArrays(const aiMesh &mesh);
    std::uint64_t hashOf(size_t corner) const;
    bool areSame(size_t a, size_t b) const;

    const RyForeignInfluences *m_influences;
    std::vector<Array> m_arrays;
};
