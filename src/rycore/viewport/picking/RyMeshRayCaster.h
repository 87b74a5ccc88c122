#pragma once

#include "rycore/math/RyLine3.h"

#include <QPointer>

#include <vector>

class RyFacetMesh;

/// Finds the facet of a mesh that a ray meets first. Facets are kept in runs with a box each, which is built in one
/// pass over the positions and skips nearly all of a mesh whose facets follow its surface.
class RyMeshRayCaster
{
public:
    /// Rebuilds when the mesh, its facets or the positions (one per vertex) differ from the last call's.
    void update(RyFacetMesh *mesh, const std::vector<RyVec3> &positions);
    void clear();
    /// Index of the nearest facet on either of its sides and the distance along the ray's unit direction; -1 for none.
    int cast(const RyLine3 &ray, double &distance) const;

private:
    struct Run
    {
        RyVec3 min, max;
    };
    bool meetsBox(const Run &run, const double origin[3], const double inverse[3], double limit) const;

    QPointer<RyFacetMesh> m_mesh;
    int m_facetCount = -1;
    std::vector<RyVec3> m_positions;
    std::vector<Run> m_runs;
};
