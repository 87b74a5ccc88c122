#pragma once

#include "pluginsource/RyJointTools/tool/drawing/RyDrawContext.h"

#include <vector>

class RyFacetMesh;
class RyFaceGroup;
class RyObject;

/// Draws where the face group of a node ends: edges whose other side has no facet or one of another group. Without a
/// group it is where the whole mesh ends. The mesh is that of the node, or of its skeleton, as it is posed.
class RyBoundaryDrawing
{
public:
    explicit RyBoundaryDrawing(const RyDrawContext &context) : m_context(context) {}

    /// Nothing in the pick pass and for a node without a mesh.
    void draw(const RyNode &node) const;

    /// Pairs of vertices, one for each boundary edge in order of the group's facets; null for no group.
    static std::vector<int> findEdges(const RyFacetMesh &mesh, const RyFaceGroup *group);

private:
    const RyDrawContext &m_context;
};
