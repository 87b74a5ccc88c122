#pragma once

#include "pluginsource/RyJointTools/tool/drawing/RyDrawContext.h"

#include "rycore/mesh/RyFacetMesh.h"

#include <QPointer>

#include <vector>

/// Where a face group or a whole mesh ends, kept from one drawing to the next as long as the mesh stays as it is.
struct RyBoundaryEdges
{
    QPointer<const RyFacetMesh> mesh;
    quint64 revision = 0;
    quint64 groupRevision = 0;
    int group = -1;            // index in the mesh, -1 for the whole of it
    std::vector<int> vertices; // two for each edge
};

/// Draws where the face group of a node ends: edges whose other side has no facet or one of another group. Without a
/// group it is where the whole mesh ends. The mesh is that of the node, or of its skeleton, as it is posed.
class RyBoundaryDrawing
{
public:
    RyBoundaryDrawing(const RyDrawContext &context, RyBoundaryEdges &edges) : m_context(context), m_edges(edges) {}

    /// Nothing in the pick pass and for a node without a mesh.
    void draw(const RyNode &node) const;

    /// Pairs of vertices, one for each boundary edge in order of the group's facets; null for no group.
    static std::vector<int> findEdges(const RyFacetMesh &mesh, const RyFaceGroup *group);

private:
    const std::vector<int> &edgesOf(const RyFacetMesh &mesh, const RyFaceGroup *group) const;

    const RyDrawContext &m_context;
    RyBoundaryEdges &m_edges;
};
