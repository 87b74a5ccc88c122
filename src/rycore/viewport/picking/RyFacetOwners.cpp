#include "rycore/viewport/picking/RyFacetOwners.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"

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

std::vector<quint64> RyFacetOwners::weightsKey(const RySkinBinding &skin) const
{
    std::vector<quint64> key{quint64(m_mesh->getNumFacets()), quint64(m_mesh->getNumVertices())};
    for (const RyBoneBinding *binding : skin.bindings()) {
        key.push_back(quint64(quintptr(binding)));
        key.push_back(binding->revision());
        for (const RyWeightMap *map : binding->getAllWeightMaps())
            key.push_back(map->revision());
    }
    return key;
}

void RyFacetOwners::assignBones()
{
    const RySkinBinding *skin =
        qobject_cast<RySkeleton *>(m_node.data()) ? RySkinBinding::findSkinFromNode(m_node) : nullptr;
    if (!skin) {
        m_weightsKey.clear();
        m_boneOfFacet.assign(size_t(m_mesh->getNumFacets()), 0);
        return;
    }
    for (const RyBoneBinding *binding : skin->bindings())
        m_owners.emplace_back(binding->getBone());
    std::vector<quint64> key = weightsKey(*skin);
    if (key == m_weightsKey)
        return;
    m_weightsKey = std::move(key);

    // The strongest binding of each vertex; then of each facet, counting its corners by their weight.
    const auto vertexCount = size_t(m_mesh->getNumVertices());
    std::vector<int> bestOwner(vertexCount, 0);
    std::vector<int> bestWeight(vertexCount, 0);
    int owner = 0;
    for (const RyBoneBinding *binding : skin->bindings()) {
        ++owner;
        std::vector<const RyWeightMap *> maps{binding->getWeights()};
        if (!maps[0])
            maps = {binding->getLocalWeights(0), binding->getLocalWeights(1), binding->getLocalWeights(2)};
        for (const RyWeightMap *map : maps) {
            if (!map || map->getNumWeights() != int(vertexCount))
                continue;
            const int *indices = map->getAffectedIndices();
            const quint16 *weights = map->getAffectedWeights();
            for (int i = 0; i < map->getNumAffected(); ++i) {
                const auto vertex = size_t(indices[i]);
                if (weights[i] > bestWeight[vertex]) {
                    bestWeight[vertex] = weights[i];
                    bestOwner[vertex] = owner;
                }
            }
        }
    }
    m_boneOfFacet.assign(size_t(m_mesh->getNumFacets()), 0);
    for (size_t f = 0; f < m_boneOfFacet.size(); ++f) {
        const RyFacet &facet = m_mesh->getFacet(int(f));
        int bestSum = -1;
        for (int corner = 0; corner < facet.count(); ++corner) {
            const int candidate = bestOwner[size_t(facet.vertices[corner])];
            int sum = 0;
            for (int other = 0; other < facet.count(); ++other) {
                const auto vertex = size_t(facet.vertices[other]);
                sum += bestOwner[vertex] == candidate ? bestWeight[vertex] : 0;
            }
            if (sum > bestSum) {
                bestSum = sum;
                m_boneOfFacet[f] = candidate;
            }
        }
    }
}
