#pragma once

#include "rycore/math/RyVec3.h"
#include "rycore/scene/RyShapeNormals.h"

#include <vector>

class RyFacetShape;
struct RyMeshPart;

/// Normals of a shape's parts as a file should have them: those that came with the parts, and smooth ones where there
/// are none or where vertices of a facet have moved since. Of the base: morphs are left aside.
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
    const RyShapeNormals &baseNormals() const;

    const RyFacetShape &m_shape;
    mutable RyShapeNormals m_base;
    std::vector<bool> m_isOther; // by RyMeshPart::normalOfSplit; empty where nothing moved
};
