#pragma once

#include "rycore/parametric/RyLegacyKernels.h"
#include "rycore/parametric/RyLegacyWeights.h"

#include <span>
#include <vector>

/// The vertices of a figure, grouped by the bones that move them: those of a group go through the same steps. Where all
/// fractions are 0 or 1 they are part of what makes the group, and one map moves it; also elsewhere a fraction that is
/// 0 or 1 is so for all of a group. Lists that loops read are followed by zeros, for loops read several numbers at
/// once.
class RyLegacyGroups
{
public:
    struct Bulge
    {
        int param = -1;
        int driver = -1;
        std::vector<float> shares; // in step with the vertices, negative on the side of D; in whole blocks
        RyLegacyKernels::Fractions all() const { return {shares.data(), RyLegacyKernels::Lanes}; }
    };
    struct Group
    {
        int owner = -1;
        int wholeBelow = -1;                  // the lowest bone that all follow wholly, with all above; -1 for none
        bool uniform = true;                  // all fractions are 0 or 1
        std::vector<int> drivers;             // further bones, children before parents
        std::vector<RyLegacyFractions> fixed; // one for each driver; of other groups where they are alike
        std::span<const int> vertices;        // ascending
        /// Of other groups, block by block: for each driver the fractions about X, Y and Z. Behind those of all
        /// vertices come the ones of translation and scale, likewise.
        const float *fractions = nullptr;
        std::vector<Bulge> bulges;
        std::vector<int> furtherNormals; // of its vertices: their places, and which vertex of the group
        std::vector<int> furtherVertices;

        /// `which`: 0 to 2 for a turn, 3 for translation, 4 for scale.
        RyLegacyKernels::Fractions component(size_t driver, size_t which) const;
        size_t blocks() const { return (vertices.size() + RyLegacyKernels::Lanes - 1) / RyLegacyKernels::Lanes; }
        static constexpr size_t Components = 5;
        RyLegacyFractions fractionsOf(size_t driver, size_t number) const;
        /// Whether all vertices have the same fraction, which is 0 or 1.
        bool isAlike(size_t driver, size_t which) const;
    };

    RyLegacyGroups() = default;
    RyLegacyGroups(const RyLegacyGroups &) = delete; // groups know where lists lie
    RyLegacyGroups &operator=(const RyLegacyGroups &) = delete;
    /// Those of owners that are unchanged stay.
    void build(const RyLegacyWeights &weights);
    /// The vertex of each normal behind those of the vertices.
    void setFurtherNormals(const std::vector<int> &vertices);
    const std::vector<Group> &groups() const { return m_groups; }
    /// Group and number in it of a vertex.
    int groupOf(int vertex) const { return m_groupOf[size_t(vertex)]; }
    int numberOf(int vertex) const { return m_numberOf[size_t(vertex)]; }

private:
    struct Sketch;
    /// Of one group after the other, as loops read them.
    struct Lists
    {
        std::vector<int> vertices;
        std::vector<float> fractions;
    };
    void takeGroups(std::vector<Group> &from, size_t first, size_t last);
    void buildOwner(const RyLegacyWeights &weights, int owner);
    void addVertex(Sketch &sketch, const RyLegacyWeights &weights, int owner, size_t number, int vertex);
    void layOut(const Sketch &sketch, Lists &lists);

    std::vector<Group> m_groups; // by owner
    std::vector<Lists> m_lists;  // of each owner
    std::vector<int> m_groupOf;
    std::vector<int> m_numberOf;
};
