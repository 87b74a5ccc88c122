#pragma once

#include "rycore/math/RyVec3.h"

#include <utility>
#include <vector>

class RyFacetMesh;

/// Weights of vertices by the bones they lie at; see `bindToNearestBones`. Knows neither bones nor maps: only segments.
class RyNearestBoneWeights
{
public:
    struct Segment
    {
        RyVec3 start, end;
        int parent = -1; // the segment whose end this one's start turns about, before this one in the list; -1 for none
    };
    using Influences = std::vector<std::pair<int, float>>; // segments, ascending, and their shares

    /// At least one segment; they are in the mesh's space.
    RyNearestBoneWeights(const RyFacetMesh &mesh, const std::vector<Segment> &segments);

    /// Whole numbers by vertex: at most four segments, ascending, with a sum of full weight.
    std::vector<std::vector<std::pair<int, quint16>>> weights() const;

private:
    void findNeighbours(const RyFacetMesh &mesh);
    void assign(const std::vector<Segment> &segments);
    void spread();

    const std::vector<RyVec3> &m_positions;
    std::vector<std::vector<int>> m_neighbours;
    std::vector<int> m_steps; // how often a vertex takes part in the spreading
    std::vector<Influences> m_shares;
};
