#pragma once

#include <cstddef>
#include <vector>

class RyFaceGroup;
class RyFacetMesh;

/// How many corners of facets of each face group lie at each vertex of a mesh. Groups are added one after the other; of
/// each vertex the latest stands in front, so that counting searches nothing.
class RyFaceGroupCorners
{
public:
    explicit RyFaceGroupCorners(const RyFacetMesh &mesh);

    /// Facets that the mesh does not have are passed over. `key` tells groups apart and is not negative.
    void add(const RyFaceGroup &group, int key);
    /// Calls `take(key, count)` for the groups of a vertex.
    template<typename Take>
    void forGroups(int vertex, const Take &take) const
    {
        const Count *count = &m_latest[std::size_t(vertex)];
        if (count->key < 0)
            return;
        take(count->key, count->corners);
        while (count->before >= 0) {
            count = &m_earlier[std::size_t(count->before)];
            take(count->key, count->corners);
        }
    }

private:
    struct Count
    {
        int key = -1;
        int corners = 0;
        int before = -1; // place among the earlier ones
    };
    const RyFacetMesh &m_mesh;
    std::vector<Count> m_latest; // by vertex
    std::vector<Count> m_earlier;
};
