#pragma once

#include "rycore/math/RyVec3.h"
#include "rycore/mesh/RyCageKernels.h"
#include "rycore/mesh/RyFacet.h"

#include <vector>

/// How much each vertex of a surface counts at a point, so that what the vertices have can be had at the point: mean
/// value coordinates of closed triangular meshes (Ju, Schaefer and Warren 2005) with the surface as cage.
///
/// They sum up to 1, are smooth inside and outside of the surface, and give the point itself for the places of the
/// vertices as far as the surface is closed. Where it is not (an open boundary that is seen wide), or the sum of what
/// is to be divided comes near to zero, they go over into the shares of a surface that counts by the fourth power of
/// its nearness. A point on a facet has coordinates of that facet alone. Quads are the same however they are split.
class RyCageCoordinates
{
public:
    /// Facets of those positions; one that has no area counts nothing.
    RyCageCoordinates(const std::vector<RyVec3> &positions, const std::vector<RyFacet> &facets);

    /// What one thread works in.
    class Room
    {
    public:
        /// One for each vertex.
        const std::vector<double> &weights() const { return m_weights; }

    private:
        friend class RyCageCoordinates;
        std::vector<double> m_weights;
        std::vector<RyCageKernels::Direction> m_directions;
        std::vector<int> m_wideTriangles;
        std::vector<int> m_wideQuads;
    };

    /// The coordinates of a point become the weights of the room. All of them are 0 where no facet has an area.
    void compute(const RyVec3 &point, Room &room) const { compute(point, room, RyCageKernels::hasAvx2()); }
    void compute(const RyVec3 &point, Room &room, bool withAvx2) const;

private:
    bool addWide(const RyCageKernels::Task &task, Room &room) const;
    void divide(const RyCageKernels::Task &task, Room &room) const;

    std::vector<double> m_places[3]; // about the middle of the box, in its longest side
    std::vector<double> m_areas;     // of vertices: their parts of their facets
    std::vector<int> m_triangles;    // three vertices each
    std::vector<int> m_quads;
    bool m_hasArea = false;
    RyVec3 m_middle;
    double m_size = 1.0;
};
