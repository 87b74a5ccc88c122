#include "rycore/io/RyPartNormals.h"

#include "rycore/scene/RyFacetShape.h"

#include <cmath>

RyPartNormals::RyPartNormals(const RyFacetShape &shape) : m_shape(shape)
{
    const std::vector<RyVec3> &now = shape.getFacetMesh()->getPositions();
    const RyMeshParts &parts = *shape.getParts();
    const std::vector<RyVec3> &then = parts.shapedFrom;
    if (then.size() != now.size() || then == now)
        return;
    m_isOther.assign(size_t(parts.normalCount), false);
    for (const RyMeshPart &part : parts.parts) {
        const auto hasMoved = [&](unsigned split) {
            const size_t vertex = size_t(part.vertexOfSplit[split]);
            return !(now[vertex] == then[vertex]);
        };
        for (size_t t = 0; t + 2 < part.triangles.size(); t += 3) {
            const unsigned *corners = &part.triangles[t];
            if (!hasMoved(corners[0]) && !hasMoved(corners[1]) && !hasMoved(corners[2]))
                continue;
            for (int corner = 0; corner < 3; ++corner)
                m_isOther[size_t(part.normalOfSplit[corners[corner]])] = true;
        }
    }
}

std::vector<RyVec3> RyPartNormals::of(const RyMeshPart &part) const
{
    std::vector<RyVec3> normals = part.normals;
    normals.resize(part.vertexOfSplit.size());
    const RyShapeNormals *smooth = nullptr;
    for (size_t split = 0; split < normals.size(); ++split) {
        const int number = part.normalOfSplit[split];
        if ((m_isOther.empty() || !m_isOther[size_t(number)]) && !(normals[split] == RyVec3()))
            continue;
        if (!smooth)
            smooth = m_shape.getNormals();
        const RyVec3 &normal = smooth->normals()[size_t(smooth->placeOf(number))];
        const float length = std::sqrt(normal.x * normal.x + normal.y * normal.y + normal.z * normal.z);
        if (length > 0.5f)
            normals[split] = normal;
        else if (normals[split] == RyVec3()) // of a vertex without a facet that has an area
            normals[split] = RyVec3(0, 1, 0);
    }
    return normals;
}
