#include "rycore/viewport/RyFacetOwners.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>

void RyFacetOwners::update(RyNode *node, RyFacetMesh *mesh, quint64 revision)
{
    if (revision == m_revision && node == m_node && mesh == m_mesh
        && mesh->getNumFacets() == int(m_ownerOfFacet.size()))
        return;
    m_revision = revision;
    m_node = node;
    m_mesh = mesh;
    m_owners.assign(1, node);
    m_ownerOfFacet.assign(size_t(mesh->getNumFacets()), 0);
    assignBones(node);
    const auto *skeleton = qobject_cast<const RySkeleton *>(node);
    const RySelectionMap *map = skeleton ? skeleton->getSelectionMap() : nullptr;
    if (!map)
        return;
    std::vector<int> ownerOfGroup(size_t(mesh->getNumFaceGroups()), -1);
    for (int pair = 0; pair < map->getNumPairs(); ++pair) {
        const int group = mesh->findFaceGroupIndex(map->getPairGroup(pair));
        if (group < 0 || !map->getPairNode(pair))
            continue;
        ownerOfGroup[size_t(group)] = int(m_owners.size());
        m_owners.push_back(map->getPairNode(pair));
    }
    for (size_t f = 0; f < m_ownerOfFacet.size(); ++f) {
        const int group = mesh->getFacet(int(f)).group;
        if (group >= 0 && ownerOfGroup[size_t(group)] >= 0)
            m_ownerOfFacet[f] = ownerOfGroup[size_t(group)];
    }
}

RyNode *RyFacetOwners::ownerOf(int facet) const
{
    if (facet < 0 || facet >= int(m_ownerOfFacet.size()))
        return nullptr;
    RyNode *owner = m_owners[size_t(m_ownerOfFacet[size_t(facet)])];
    return owner ? owner : m_node.data();
}

std::vector<int> RyFacetOwners::facetsOf(const RyNode *owner) const
{
    std::vector<int> facets;
    for (size_t f = 0; f < m_ownerOfFacet.size(); ++f) {
        if (m_owners[size_t(m_ownerOfFacet[f])] == owner)
            facets.push_back(int(f));
    }
    return facets;
}

void RyFacetOwners::assignBones(const RyNode *)
{
}
