#include "pluginsource/RyJointTools/tool/drawing/RyKeptWeights.h"

#include "rycore/mesh/RyWeightMap.h"
#include "rycore/parametric/RyLegacyJoint.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>

static quint64 nextRevision()
{
    return RyPointChanges::nextRevision();
}

bool RyKeptWeights::update(const RyWeightSide &side, RyWeightColors &colors, bool ownAlone)
{
    m_missingGroup.clear();
    const RyLegacyJoint *joint = side.param ? side.param->getJoint() : nullptr;
    const RyLegacyBinding *binding = joint ? joint->getBinding() : nullptr;
    // That of the bone's skeleton, or of the figure whose bone joined it.
    RyObject *object = binding ? binding->getObject() : nullptr;
    if (!object || !object->getNode() || !joint->getBone() || !joint->getBone()->getSkeleton())
        return false;
    const auto *shape = qobject_cast<RyFacetShape *>(object->getCurrentShape());
    const RyFacetMesh *mesh = shape ? shape->getFacetMesh() : nullptr;
    if (!mesh || mesh->getNumVertices() == 0 || !updateFacets(*object, *mesh, joint->getGroupName()))
        return false;
    const RyShapePoints points = object->getDeformedPoints();
    if (!points.positions || points.positions->size() != size_t(mesh->getNumVertices()))
        return false;
    m_toWorld = object->getNode()->worldMap().toMatrix4();
    m_firstVertex = m_toWorld.multVecMatrix(points.positions->front());
    updatePositions(points);
    updateWeights(side, *binding);
    updateColors(side, colors, ownAlone);
    return true;
}

bool RyKeptWeights::updateFacets(const RyObject &object, const RyFacetMesh &mesh, const QString &group)
{
    const RyFaceGroup *faces = group.isEmpty() ? nullptr : mesh.findFaceGroup(group);
    if (!faces && !group.isEmpty()) {
        m_missingGroup = group;
        return false;
    }
    const FacetsKey key{&object, &mesh, mesh.revision(), mesh.groupRevision(), group};
    if (key != m_facetsKey) {
        m_facetsKey = key;
        listFacets(mesh, faces);
    }
    return !m_vertices.empty();
}

void RyKeptWeights::listFacets(const RyFacetMesh &mesh, const RyFaceGroup *group)
{
    const int facetCount = group ? group->getFacets().count() : mesh.getNumFacets();
    const auto forCorners = [&](auto work) {
        for (int i = 0; i < facetCount; ++i) {
            const RyFacet &facet = mesh.getFacet(group ? group->getFacets().getIndex(i) : i);
            for (int corner = 0; corner < facet.count(); ++corner)
                work(facet, size_t(facet.vertices[corner]));
        }
    };
    std::vector<unsigned> places(size_t(mesh.getNumVertices()), 0);
    forCorners([&](const RyFacet &, size_t vertex) { places[vertex] = 1; });
    m_vertices.clear();
    for (size_t vertex = 0; vertex < places.size(); ++vertex) {
        if (places[vertex] == 0)
            continue;
        places[vertex] = unsigned(m_vertices.size());
        m_vertices.push_back(int(vertex));
    }
    m_triangles.clear();
    m_quads.clear();
    forCorners([&](const RyFacet &facet, size_t vertex) {
        (facet.isTriangle() ? m_triangles : m_quads).push_back(places[vertex]);
    });
    m_facetsRevision = nextRevision();
    m_pointsRevision = 0;
    ++m_counts.facets;
}

void RyKeptWeights::updatePositions(const RyShapePoints &points)
{
    if (m_pointsRevision != 0 && points.revision() != 0 && !areTouched(points)) {
        m_pointsRevision = points.revision();
        return;
    }
    m_pointsRevision = points.revision();
    m_positions.resize(m_vertices.size());
    for (size_t i = 0; i < m_vertices.size(); ++i)
        m_positions[i] = (*points.positions)[size_t(m_vertices[i])];
    m_positionsRevision = nextRevision();
    ++m_counts.positions;
}

bool RyKeptWeights::areTouched(const RyShapePoints &points) const
{
    if (points.revision() == m_pointsRevision)
        return false;
    const std::vector<RyPointChanges::Range> changed = points.changedSince(m_pointsRevision);
    return std::any_of(changed.begin(), changed.end(), [this](const RyPointChanges::Range &range) {
        const auto next = std::lower_bound(m_vertices.begin(), m_vertices.end(), range.first);
        return next != m_vertices.end() && *next < range.first + range.count;
    });
}

void RyKeptWeights::updateWeights(const RyWeightSide &side, const RyLegacyBinding &binding)
{
    // The points of the object have just been worked out, and the binding's weights with them.
    const WeightsKey key{side.param, side.partner, &binding, binding.deformer().groupBuilds(), m_facetsRevision};
    if (key == m_weightsKey)
        return;
    const bool sameVertices = key.facets == m_weightsKey.facets;
    m_weightsKey = key;
    ++m_counts.weights;
    std::vector<quint16> own = weightsOf(side.param, binding);
    std::vector<quint16> partners = weightsOf(side.partner, binding);
    if (sameVertices && own == m_own && partners == m_partners)
        return;
    m_own = std::move(own);
    m_partners = std::move(partners);
    m_weightsRevision = nextRevision();
}

/// 0 without a map, and where that is one of another mesh.
std::vector<quint16> RyKeptWeights::weightsOf(RyLegacyJointParam *param, const RyLegacyBinding &binding) const
{
    std::vector<quint16> weights(m_vertices.size(), 0);
    const RyLegacyJoint *joint = param ? param->getJoint() : nullptr;
    if (!joint || joint->getBinding() != &binding || !joint->getBone())
        return weights;
    const RyWeightMap *map = param->getWeights(joint->getBone()->getSkeleton());
    if (!map || map->isEmpty())
        return weights;
    const int *affected = map->getAffectedIndices();
    const quint16 *values = map->getAffectedWeights();
    size_t place = 0;
    for (int i = 0; i < map->getNumAffected(); ++i) {
        while (place < m_vertices.size() && m_vertices[place] < affected[i])
            ++place;
        if (place < m_vertices.size() && m_vertices[place] == affected[i])
            weights[place] = values[i];
    }
    return weights;
}

void RyKeptWeights::updateColors(const RyWeightSide &side, RyWeightColors &colors, bool ownAlone)
{
    const ColorsKey key{m_weightsRevision, colors.revision(), side.isReversed, side.isPartnerReversed, ownAlone};
    if (key == m_colorsKey)
        return;
    m_colorsKey = key;
    const std::vector<RyWeightColors::Bytes> &ownRamp = colors.ramp(side.isReversed);
    const std::vector<RyWeightColors::Bytes> &partnerRamp = colors.ramp(side.isPartnerReversed);
    m_colors.resize(m_vertices.size());
    for (size_t i = 0; i < m_colors.size(); ++i) {
        const bool isOwn = ownAlone || m_own[i] >= m_partners[i];
        m_colors[i] = isOwn ? ownRamp[m_own[i]] : partnerRamp[m_partners[i]];
    }
    m_colorsRevision = nextRevision();
    ++m_counts.colors;
}
