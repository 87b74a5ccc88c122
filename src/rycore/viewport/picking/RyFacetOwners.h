#pragma once

#include <QPointer>

#include <vector>

class RyFacetMesh;
class RyModifier;
class RyNode;
struct RyVertexBones;

/// Which node each facet of a mesh stands for when it is pointed at: for a figure the node paired with the facet's
/// group in the selection map, else the bone that the modifier names for its vertices; for other nodes the node itself.
class RyFacetOwners
{
public:
    /// Looks again when `revision` differs from the last call's. The object has been deformed since.
    void update(RyNode *node, RyFacetMesh *mesh, quint64 revision);
    RyNode *ownerOf(int facet) const;
    /// The facets of a node, ascending.
    std::vector<int> facetsOf(const RyNode *owner) const;

private:
    std::vector<quint64> keyOf(const RyModifier &modifier) const;
    void assignBones();
    void assignFacets(const RyVertexBones &vertices);

    quint64 m_revision = 0;
    QPointer<RyNode> m_node;
    QPointer<RyFacetMesh> m_mesh;
    std::vector<QPointer<RyNode>> m_owners; // index 0: the node itself
    std::vector<int> m_ownerOfFacet;        // index into m_owners
    std::vector<quint64> m_bonesKey;        // what the next one was made from
    std::vector<int> m_boneOfFacet;         // by the modifier alone
};
