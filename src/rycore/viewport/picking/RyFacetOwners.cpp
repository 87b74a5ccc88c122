#include "rycore/viewport/picking/RyFacetOwners.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyModifier.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>

void RyFacetOwners::update(RyNode *node, RyFacetMesh *mesh, quint64 revision)
{
    if (revision == m_revision && node == m_node && mesh == m_mesh &&
        mesh->getNumFacets() == int(m_ownerOfFacet.size()))
        return;
    m_revision = revision;
    m_node = node;
    m_mesh = mesh;
    m_owners.assign(1, node);
    assignBones();
    m_ownerOfFacet = m_boneOfFacet;
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

std::vector<quint64> RyFacetOwners::keyOf(const RyModifier &modifier) const
{
    std::vector<quint64> key = modifier.vertexBonesKey();
    for (const quint64 part :
         {quint64(quintptr(&modifier)), quint64(m_mesh->getNumFacets()), quint64(m_mesh->getNumVertices())})
        key.push_back(part);
    return key;
}

void RyFacetOwners::assignBones()
{
    const bool isFigure = qobject_cast<const RySkeleton *>(m_node.data()) && m_node->getObject();
    for (const RyModifier *modifier : isFigure ? m_node->getObject()->getModifiers() : std::vector<RyModifier *>()) {
        const std::vector<RyNode *> bones = modifier->bones();
        if (bones.empty())
            continue;
        m_owners.insert(m_owners.end(), bones.begin(), bones.end());
        std::vector<quint64> key = keyOf(*modifier);
        if (key != m_bonesKey)
            assignFacets(modifier->vertexBones(m_mesh->getNumVertices()));
        m_bonesKey = std::move(key);
        return;
    }
    m_bonesKey.clear();
    m_boneOfFacet.assign(size_t(m_mesh->getNumFacets()), 0);
}

/// Of the bones of its corners a facet goes to the one with the most weight on it.
void RyFacetOwners::assignFacets(const RyVertexBones &vertices)
{
    m_boneOfFacet.assign(size_t(m_mesh->getNumFacets()), 0);
    for (size_t f = 0; f < m_boneOfFacet.size(); ++f) {
        const RyFacet &facet = m_mesh->getFacet(int(f));
        int bestSum = -1;
        for (int corner = 0; corner < facet.count(); ++corner) {
            const int candidate = vertices.bones[size_t(facet.vertices[corner])];
            int sum = 0;
            for (int other = 0; other < facet.count(); ++other) {
                const auto vertex = size_t(facet.vertices[other]);
                sum += vertices.bones[vertex] == candidate ? vertices.weights[vertex] : 0;
            }
            if (sum > bestSum) {
                bestSum = sum;
                m_boneOfFacet[f] = candidate + 1; // behind the node itself
            }
        }
    }
}
