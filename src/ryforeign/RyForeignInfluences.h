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
    /// or not above zero are left out; the others are as the mesh says, in the order of its bones.
    RyForeignInfluences(const aiMesh &mesh, const std::vector<int> &placeOf);
    /// From then on those of each of these vertices sum to 1, each joint once, the largest first. Most vertices of the
    /// library's meshes are copies of others, so that it is left to those that are kept.
    void normalize(const std::vector<std::uint32_t> &vertices);

    const Influence *begin(unsigned vertex) const { return m_all.data() + m_first[vertex]; }
    unsigned count(unsigned vertex) const { return m_count[vertex]; }
    /// Of the vertices that were normalized.
    unsigned most() const { return m_most; }

private:
    std::vector<Influence> m_all;
    std::vector<std::uint32_t> m_first; // per vertex
    std::vector<std::uint32_t> m_count;
    unsigned m_most = 0;
};
