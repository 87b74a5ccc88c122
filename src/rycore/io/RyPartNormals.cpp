#include "rycore/io/RyPartNormals.h"

#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyNormalSource.h"

#include <cmath>

RyPartNormals::RyPartNormals(const RyFacetShape &shape) : m_shape(shape)
{
    const std::vector<RyVec3> &now = shape.getFacetMesh()->getPositions();
    const RyMeshParts &parts = *shape.getParts();
    const std::vector<RyVec3> &then = parts.shapedFrom;
    const bool isKept = then.size() == now.size();
    if (isKept && then == now)
        return;
    for (const RyMeshPart &part : parts.parts) {
        if (isKept) {
            markMoved(part, [&](size_t vertex, size_t) { return !(now[vertex] == then[vertex]); });
        } else if (then.empty() && part.normalSource) {
            const std::vector<RyVec3> read = part.normalSource->positions();
            markMoved(part, [&](size_t vertex, size_t split) { return !(now[vertex] == read[split]); });
        }
    }
}

/// Marks the normals of all facets with a vertex that stands elsewhere; `hasMoved` is asked by vertex and split vertex.
template<typename HasMoved>
void RyPartNormals::markMoved(const RyMeshPart &part, const HasMoved &hasMoved)
{
    std::vector<bool> moved;
    for (size_t split = 0; split < part.vertexOfSplit.size(); ++split) {
        if (!hasMoved(size_t(part.vertexOfSplit[split]), split))
            continue;
        moved.resize(part.vertexOfSplit.size());
        moved[split] = true;
    }
    if (moved.empty())
        return;
    m_isOther.resize(size_t(m_shape.getParts()->normalCount));
    for (size_t t = 0; t + 2 < part.triangles.size(); t += 3) {
        const unsigned *corners = &part.triangles[t];
        if (!moved[corners[0]] && !moved[corners[1]] && !moved[corners[2]])
            continue;
        for (int corner = 0; corner < 3; ++corner)
            m_isOther[size_t(part.normalOfSplit[corners[corner]])] = true;
    }
}

/// Those of the shape are of what its morphs show.
const RyShapeNormals &RyPartNormals::baseNormals() const
{
    const RyShapeNormals *current = m_shape.getNormals();
    if (!m_shape.morphedPositions().areMorphed())
        return *current;
    m_base.update(*m_shape.getFacetMesh(), m_shape.getParts());
    return m_base;
}

std::vector<RyVec3> RyPartNormals::of(const RyMeshPart &part) const
{
    std::vector<RyVec3> normals = part.readNormals();
    normals.resize(part.vertexOfSplit.size());
    const RyShapeNormals *smooth = nullptr;
    for (size_t split = 0; split < normals.size(); ++split) {
        const int number = part.normalOfSplit[split];
        if ((m_isOther.empty() || !m_isOther[size_t(number)]) && !(normals[split] == RyVec3()))
            continue;
        if (!smooth)
            smooth = &baseNormals();
        const RyVec3 &normal = smooth->normals()[size_t(smooth->placeOf(number))];
        const float length = std::sqrt(normal.x * normal.x + normal.y * normal.y + normal.z * normal.z);
        if (length > 0.5f)
            normals[split] = normal;
        else if (normals[split] == RyVec3()) // of a vertex without a facet that has an area
            normals[split] = RyVec3(0, 1, 0);
    }
    return normals;
}
