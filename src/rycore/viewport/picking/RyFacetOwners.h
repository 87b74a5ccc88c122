#pragma once

#include <QPointer>

#include <vector>

class RyFacetMesh;
class RyLegacyBinding;
class RyNode;
class RySkinBinding;

/// Which node each facet of a mesh stands for when it is pointed at: for a figure the node paired with the facet's
/// group in the selection map, else the bone that weighs most on its vertices, of a parametric figure the lowest one
/// that moves them; for other nodes the node itself.
class RyFacetOwners
{
public:
    /// Looks again when `revision` differs from the last call's. The object has been deformed since.
    void update(RyNode *node, RyFacetMesh *mesh, quint64 revision);
    RyNode *ownerOf(int facet) const;
    /// The facets of a node, ascending.
    std::vector<int> facetsOf(const RyNode *owner) const;

private:
    /// For each vertex a place in `m_owners` and a weight.
    struct VertexOwners
    {
        std::vector<int> places;
        std::vector<int> weights;
    };
    std::vector<quint64> weightsKey(const RySkinBinding &skin) const;
    std::vector<quint64> weightsKey(const RyLegacyBinding &binding) const;
    VertexOwners ownersOf(const RySkinBinding &skin) const;
    VertexOwners ownersOf(const RyLegacyBinding &binding) const;
    void assignBones();
    void assignFacets(const VertexOwners &vertices);

    quint64 m_revision = 0;
    QPointer<RyNode> m_node;
    QPointer<RyFacetMesh> m_mesh;
    std::vector<QPointer<RyNode>> m_owners; // index 0: the node itself
    std::vector<int> m_ownerOfFacet;        // index into m_owners
    std::vector<quint64> m_weightsKey;      // what the next one was made from
    std::vector<int> m_boneOfFacet;         // by weights alone
};
