#pragma once

#include <cstdint>
#include <vector>

struct aiMesh;

/// What moves the vertices of a mesh: all influences, those of one vertex side by side.
class RyForeignInfluences
{
public:
    struct Influence
    {
        std::uint32_t joint; // a place in the list of joints
        float weight;
        bool operator==(const Influence &) const = default;
    };

    /// `placeOf`: of the mesh's bones in the list of joints, -1 for those that are none. Influences that are not finite
    /// or not above zero are left out; the others of a vertex sum to 1, the largest first.
    RyForeignInfluences(const aiMesh &mesh, const std::vector<int> &placeOf);

    const Influence *begin(unsigned vertex) const { return m_all.data() + m_first[vertex]; }
    unsigned count(unsigned vertex) const { return m_count[vertex]; }
    unsigned most() const { return m_most; }

private:
    void normalize();

    std::vector<Influence> m_all;
    std::vector<std::uint32_t> m_first; // per vertex
    std::vector<std::uint32_t> m_count;
    unsigned m_most = 0;
};
