#include "pluginsource/RyJointTools/operations/RyBakedShape.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyMorph.h"
#include "rycore/skin/RySkinBinding.h"

#include <cmath>

bool RyBakedShape::take()
{
    if (!m_shape || !m_shape->getFacetMesh())
        return false;
    const bool hasMorphs = !m_shape->getMorphs().empty();
    return m_skin->deformBase(m_shape->getCurrentPositions(), m_shown, hasMorphs ? &m_linear : nullptr);
}

void RyBakedShape::installShown()
{
    install(m_shown, nullptr);
}

void RyBakedShape::installBelowPose()
{
    const std::vector<RyVec3> &current = m_shape->getCurrentPositions();
    std::vector<RyVec3> posed;
    std::vector<RyMatrix3> back;
    // The skin took as many vertices with the same weights before, and refuses for nothing else.
    const bool isTaken = m_skin->deformBase(current, posed, &back);
    Q_ASSERT(isTaken);
    if (!isTaken)
        return;
    // Each vertex goes by an affine map, of which this takes back the linear part.
    const float flat = 1e-6f;
    std::vector<RyVec3> positions = current;
    for (size_t vertex = 0; vertex < positions.size(); ++vertex) {
        const bool isFlat = std::fabs(back[vertex].determinant()) < flat;
        back[vertex] = isFlat ? RyMatrix3() : back[vertex].inverse();
        if (!isFlat)
            positions[vertex] += back[vertex].multVec(m_shown[vertex] - posed[vertex]);
    }
    install(std::move(positions), &back);
}

std::vector<RyVec3> RyBakedShape::turned(const std::vector<int> &vertices, const std::vector<RyVec3> &deltas,
                                         const std::vector<RyMatrix3> *back) const
{
    std::vector<RyVec3> result;
    for (size_t i = 0; i < vertices.size(); ++i) {
        const auto vertex = size_t(vertices[i]);
        const bool isThere = vertex < m_linear.size();
        result.push_back(isThere ? m_linear[vertex].multVec(deltas[i]) : deltas[i]);
        if (isThere && back)
            result.back() = (*back)[vertex].multVec(result.back());
    }
    return result;
}

/// What no bone moves stays to the bit, whatever its morphs show.
void RyBakedShape::keepUnmoved(std::vector<RyVec3> &positions) const
{
    const std::vector<RyVec3> &base = m_shape->getBasePositions();
    const float noise = 1e-6f;
    for (size_t vertex = 0; vertex < m_linear.size(); ++vertex) {
        const float slack = noise * (1.0f + base[vertex].length());
        if (m_linear[vertex] == RyMatrix3() && (positions[vertex] - base[vertex]).length() < slack)
            positions[vertex] = base[vertex];
    }
}

void RyBakedShape::install(std::vector<RyVec3> positions, const std::vector<RyMatrix3> *back)
{
    std::vector<std::vector<RyVec3>> deltas;
    for (const RyMorph *morph : m_shape->getMorphs()) {
        deltas.push_back(turned(morph->vertices(), morph->deltas(), back));
        for (size_t i = 0; i < deltas.back().size(); ++i) {
            const auto vertex = size_t(morph->vertices()[i]);
            if (vertex < positions.size())
                positions[vertex] -= deltas.back()[i] * morph->shownValue();
        }
    }
    keepUnmoved(positions);
    if (positions == m_shape->getBasePositions())
        return;
    const RyRef<RyFacetMesh> mesh(m_shape->getFacetMesh()->copy());
    mesh->setPositions(std::move(positions));
    m_shape->setFacetMesh(mesh.get());
    for (size_t i = 0; i < deltas.size(); ++i)
        m_shape->getMorphs()[i]->setDeltas(std::move(deltas[i]));
}
