#include "rycore/viewport/picking/RyNodePicker.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"

#include <algorithm>

namespace {

RyFacetMesh *meshOf(const RyNode *node)
{
    const RyObject *object = node->getObject();
    auto *shape = object ? qobject_cast<RyFacetShape *>(object->getCurrentShape()) : nullptr;
    return shape ? shape->getFacetMesh() : nullptr;
}

} // namespace

RyNodePicker::Entry *RyNodePicker::entryFor(RyNode *node, quint64 dataRevision)
{
    RyFacetMesh *mesh = meshOf(node);
    if (!mesh)
        return nullptr;
    if (dataRevision != m_dataRevision) {
        m_dataRevision = dataRevision;
        m_castRevisions.clear();
    }
    std::unique_ptr<Entry> &entry = m_entries[node->getObject()];
    if (!entry)
        entry = std::make_unique<Entry>();
    quint64 &seen = m_castRevisions[node->getObject()];
    if (seen != dataRevision) {
        seen = dataRevision;
        entry->caster.update(mesh, node->getObject()->getDeformedPositions());
    }
    return entry.get();
}

RyNodePicker::Hit RyNodePicker::pick(const RyScene &scene, const RyLine3 &ray, quint64 dataRevision)
{
    Hit best;
    Entry *bestEntry = nullptr;
    for (RyNode *node : scene.getNodes()) {
        if (!node->getObject() || !node->isVisible())
            continue;
        Entry *entry = entryFor(node, dataRevision);
        if (!entry)
            continue;
        const RyAffine toLocal = node->worldMap().inverse();
        const RyVec3 origin = toLocal.mapPoint(ray.getOrigin());
        const RyVec3 direction = toLocal.mapDirection(ray.getDirection());
        const double scale = direction.length();
        if (scale <= 0.0)
            continue;
        double distance = 0.0;
        const int facet = entry->caster.cast(RyLine3(origin, origin + direction.normalized() * 1000.0f), distance);
        if (facet < 0 || (bestEntry && distance / scale >= best.distance))
            continue;
        best.meshNode = node;
        best.facet = facet;
        best.distance = distance / scale;
        bestEntry = entry;
    }
    if (bestEntry) {
        bestEntry->owners.update(best.meshNode, meshOf(best.meshNode), dataRevision);
        best.node = selectableFor(bestEntry->owners.ownerOf(best.facet));
    }
    return best;
}

RyNode *RyNodePicker::selectableFor(RyNode *node)
{
    while (node && node->isSelectionPromoted() && node->getNodeParent())
        node = node->getNodeParent();
    while (node && !node->isSelectable())
        node = node->getNodeParent();
    return node;
}

const std::vector<RyNodePicker::Patch> &RyNodePicker::patchesOf(const RyScene &scene, const RyNode *node,
                                                                quint64 dataRevision)
{
    if (node == m_patchNode && dataRevision == m_patchRevision)
        return m_patches;
    m_patchNode = node;
    m_patchRevision = dataRevision;
    m_patches.clear();
    for (RyNode *meshNode : scene.getNodes()) {
        if (meshNode->getObject() && meshNode->isVisible())
            collect(meshNode, node, dataRevision);
    }
    return m_patches;
}

void RyNodePicker::collect(RyNode *meshNode, const RyNode *node, quint64 dataRevision)
{
    Entry *entry = entryFor(meshNode, dataRevision);
    RyFacetMesh *mesh = meshOf(meshNode);
    if (!entry)
        return;
    entry->owners.update(meshNode, mesh, dataRevision);
    std::vector<int> facets;
    if (node == meshNode) {
        for (int f = 0; f < mesh->getNumFacets(); ++f)
            facets.push_back(f);
    } else {
        facets = entry->owners.facetsOf(node);
    }
    if (facets.empty())
        return;
    Patch patch;
    patch.meshNode = meshNode;
    patch.positions = meshNode->getObject()->getDeformedPositions();
    if (int(patch.positions.size()) != mesh->getNumVertices())
        return;
    for (int f : facets) {
        const RyFacet &facet = mesh->getFacet(f);
        for (int corner = 2; corner < facet.count(); ++corner) {
            for (int c : {0, corner - 1, corner})
                patch.triangles.push_back(unsigned(facet.vertices[c]));
        }
        for (int edge = 0; edge < facet.count(); ++edge) {
            const int neighbour = mesh->getNeighbour(f, edge);
            if (neighbour >= 0 && std::binary_search(facets.begin(), facets.end(), neighbour))
                continue;
            patch.border.push_back(unsigned(facet.vertices[edge]));
            patch.border.push_back(unsigned(facet.vertices[(edge + 1) % facet.count()]));
        }
    }
    m_patches.push_back(std::move(patch));
}
