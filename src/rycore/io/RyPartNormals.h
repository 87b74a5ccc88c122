#pragma once

#include "rycore/math/RyVec3.h"

#include <vector>

class RyFacetShape;
struct RyMeshPart;

/// Normals of a shape's parts as a file should have them: those that came with the parts, and smooth ones where there
/// are none or where vertices of a facet have moved since.
class RyPartNormals
{
public:
    /// The shape has parts, and they fit its mesh.
    explicit RyPartNormals(const RyFacetShape &shape);

    /// Per split vertex, in figure space, of length 1.
    std::vector<RyVec3> of(const RyMeshPart &part) const;

private:
    template<typename HasMoved>
    void markMoved(const RyMeshPart &part, const HasMoved &hasMoved);

    const RyFacetShape &m_shape;
    std::vector<bool> m_isOther; // by RyMeshPart::normalOfSplit; empty where nothing moved
};
