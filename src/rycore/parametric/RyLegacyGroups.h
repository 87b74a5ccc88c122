#pragma once

#include "rycore/parametric/RyLegacyWeights.h"

#include <vector>

/// The vertices of a figure, grouped by the bones that move them: those of a group go through the same steps. Where all
/// fractions are 0 or 1 they are part of what makes the group, and one map moves it; also elsewhere a fraction that is
/// 0 or 1 is so for all of a group.
class RyLegacyGroups
{
public:
    struct Bulge
    {
        int param = -1;
        int driver = -1;
        std::vector<float> shares; // in step with the vertices, negative on the side of D
    };
    struct Group
    {
        int owner = -1;
        int wholeBelow = -1;                  // the lowest bone that all follow wholly, with all above; -1 for none
        bool uniform = true;                  // all fractions are 0 or 1
        std::vector<int> drivers;             // further bones, children before parents
        std::vector<RyLegacyFractions> fixed; // of a uniform group, one for each driver
        std::vector<int> vertices;            // ascending
        /// Of other groups: for each driver the fractions about X, Y, Z, of translation and of scale, each in step with
        /// the vertices.
        std::vector<float> fractions;
        std::vector<Bulge> bulges;
        std::vector<int> furtherNormals; // of its vertices: their places, and which vertex of the group
        std::vector<int> furtherVertices;

        static constexpr size_t Components = 5;
        const float *component(size_t driver, size_t which) const
        {
            return fractions.data() + (driver * Components + which) * vertices.size();
        }
        RyLegacyFractions fractionsOf(size_t driver, size_t number) const;
        /// Whether all vertices have the same fraction, which is 0 or 1.
        bool isAlike(size_t driver, size_t which) const;
    };

    void build(const RyLegacyWeights &weights);
    /// The vertex of each normal behind those of the vertices.
    void setFurtherNormals(const std::vector<int> &vertices);
    const std::vector<Group> &groups() const { return m_groups; }
    /// Group and number in it of a vertex.
    int groupOf(int vertex) const { return m_groupOf[size_t(vertex)]; }
    int numberOf(int vertex) const { return m_numberOf[size_t(vertex)]; }

private:
    struct Sketch;
    void addVertex(Sketch &sketch, const RyLegacyWeights &weights, int owner, size_t number, int vertex);

    std::vector<Group> m_groups;
    std::vector<int> m_groupOf;
    std::vector<int> m_numberOf;
};
