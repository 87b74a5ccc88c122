#pragma once

#include "rycore/math/RyVec3.h"

#include <QtGlobal>

#include <memory>
#include <vector>

class RyFacetMesh;
struct RyMeshParts;

/// Smooth normals of a shape at rest, made from its facets: one for each vertex (zero without facets), then further
/// ones of vertices at hard edges. What moves the vertices carries these normals along.
class RyShapeNormals
{
public:
    /// Makes anew what differs from the last call for this mesh. `parts` may be null: then every vertex has one normal.
    void update(const RyFacetMesh &mesh, const std::shared_ptr<const RyMeshParts> &parts);

    /// Unit vectors, in places: the vertices', then the further ones.
    const std::vector<RyVec3> &normals() const { return m_normals; }
    /// Which vertex each further normal belongs to.
    const std::vector<int> &vertexOfFurther() const { return m_vertexOfFurther; }
    /// The place of a number of RyMeshPart::normalOfSplit; without parts, of a vertex.
    int placeOf(int number) const;
    /// Another one whenever normals differ, and whenever what they belong to differs (numbers of RyPointChanges).
    quint64 revision() const { return m_revision; }
    quint64 layoutRevision() const { return m_layoutRevision; }

private:
    void assignPlaces(int vertexCount);
    void sumFacets(const RyFacetMesh &mesh);

    quint64 m_meshRevision = 0;
    int m_vertexCount = -1;
    std::shared_ptr<const RyMeshParts> m_parts;
    std::vector<RyVec3> m_normals;
    std::vector<int> m_vertexOfFurther;
    std::vector<int> m_placeOfNumber; // empty without parts
    quint64 m_revision = 0;
    quint64 m_layoutRevision = 0;
};
