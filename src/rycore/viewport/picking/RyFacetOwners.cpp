#include "rycore/viewport/picking/RyFacetOwners.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/parametric/RyLegacyBinding.h"
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

std::vector<quint64> RyFacetOwners::weightsKey(const RyLegacyBinding &binding) const
{
    std::vector<quint64> key{quint64(m_mesh->getNumFacets()), quint64(quintptr(&binding)),
                             quint64(binding.deformer().groupBuilds())};
    for (const QPointer<RyNode> &bone : m_owners)
        key.push_back(quint64(quintptr(bone.data())));
    return key;
}

void RyFacetOwners::assignBones()
{
    const auto *skeleton = qobject_cast<const RySkeleton *>(m_node.data());
    const auto assign = [this](const auto &modifier) {
        std::vector<quint64> key = weightsKey(modifier);
        if (key == m_weightsKey)
            return;
        m_weightsKey = std::move(key);
        assignFacets(ownersOf(modifier));
    };
    if (const RySkinBinding *skin = RySkinBinding::findSkin(skeleton)) {
        for (const RyBoneBinding *binding : skin->bindings())
            m_owners.emplace_back(binding->getBone());
        assign(*skin);
    } else if (const RyLegacyBinding *binding = RyLegacyBinding::findBinding(skeleton)) {
        for (RyNode *bone : RyLegacyRig::bonesOf(binding, *skeleton))
            m_owners.emplace_back(bone);
        assign(*binding);
    } else {
        m_weightsKey.clear();
        m_boneOfFacet.assign(size_t(m_mesh->getNumFacets()), 0);
    }
}

/// The strongest binding of each vertex.
RyFacetOwners::VertexOwners RyFacetOwners::ownersOf(const RySkinBinding &skin) const
{
    const auto vertexCount = size_t(m_mesh->getNumVertices());
    VertexOwners vertices{std::vector<int>(vertexCount, 0), std::vector<int>(vertexCount, 0)};
    int owner = 0;
    for (const RyBoneBinding *binding : skin.bindings()) {
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
                if (weights[i] > vertices.weights[vertex]) {
                    vertices.weights[vertex] = weights[i];
                    vertices.places[vertex] = owner;
                }
            }
        }
    }
    return vertices;
}

RyFacetOwners::VertexOwners RyFacetOwners::ownersOf(const RyLegacyBinding &binding) const
{
    const auto vertexCount = size_t(m_mesh->getNumVertices());
    VertexOwners vertices{std::vector<int>(vertexCount, 0), std::vector<int>(vertexCount, 1)};
    const RyLegacyDeformer &deformer = binding.deformer();
    if (deformer.getNumVertices() != int(vertexCount) || deformer.rig().bones.size() + 1 != m_owners.size())
        return vertices;
    for (size_t vertex = 0; vertex < vertexCount; ++vertex)
        vertices.places[vertex] = deformer.leader(int(vertex)) + 1;
    return vertices;
}

/// Of the owners of its corners a facet goes to the one with the most weight on it.
void RyFacetOwners::assignFacets(const VertexOwners &vertices)
{
    m_boneOfFacet.assign(size_t(m_mesh->getNumFacets()), 0);
    for (size_t f = 0; f < m_boneOfFacet.size(); ++f) {
        const RyFacet &facet = m_mesh->getFacet(int(f));
        int bestSum = -1;
        for (int corner = 0; corner < facet.count(); ++corner) {
            const int candidate = vertices.places[size_t(facet.vertices[corner])];
            int sum = 0;
            for (int other = 0; other < facet.count(); ++other) {
                const auto vertex = size_t(facet.vertices[other]);
                sum += vertices.places[vertex] == candidate ? vertices.weights[vertex] : 0;
            }
            if (sum > bestSum) {
                bestSum = sum;
                m_boneOfFacet[f] = candidate;
            }
        }
    }
}
