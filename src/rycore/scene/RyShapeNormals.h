#pragma once

#include "rycore/math/RyVec3.h"
#include "rycore/scene/RyPointChanges.h"
#include "rycore/scene/RyShapeTriangles.h"

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
    /// The same for a mesh whose vertices stand elsewhere: while the mesh stays, only normals around vertices that
    /// `changes` says of are made anew.
    void update(const RyFacetMesh &mesh, const std::shared_ptr<const RyMeshParts> &parts,
                const std::vector<RyVec3> &positions, const RyPointChanges &changes);

    /// Unit vectors, in places: the vertices', then the further ones.
    const std::vector<RyVec3> &normals() const { return m_normals; }
    /// Which vertex each further normal belongs to.
    const std::vector<int> &vertexOfFurther() const { return m_vertexOfFurther; }
    /// The place of a number of RyMeshPart::normalOfSplit; without parts, of a vertex.
    int placeOf(int number) const;
    /// Another one whenever normals differ, and whenever what they belong to differs (numbers of RyPointChanges).
    quint64 revision() const { return m_changes.revision(); }
    quint64 layoutRevision() const { return m_layoutRevision; }
    /// By places.
    const RyPointChanges &changes() const { return m_changes; }
    /// Normals made by the last update that made any.
    qint64 lastTouched() const { return m_lastTouched; }

private:
    void assignPlaces(int vertexCount);
    void sumAll(const RyFacetMesh &mesh, const std::vector<RyVec3> &positions);
    void sumAround(const std::vector<RyPointChanges::Range> &vertices, const RyFacetMesh &mesh,
                   const std::vector<RyVec3> &positions);
    /// Null where the facets say all.
    const RyMeshParts *partsWithNormals() const { return m_placeOfNumber.empty() ? nullptr : m_parts.get(); }

    quint64 m_meshRevision = 0;
    quint64 m_positionsRevision = 0;
    int m_vertexCount = -1;
    std::shared_ptr<const RyMeshParts> m_parts;
    std::vector<RyVec3> m_normals;
    std::vector<int> m_vertexOfFurther;
    std::vector<int> m_placeOfNumber; // empty without parts
    RyShapeTriangles m_triangles;     // empty until some of the vertices move
    std::vector<char> m_isListed;     // by place, while normals are gathered; else all 0
    RyPointChanges m_changes;
    quint64 m_layoutRevision = 0;
    qint64 m_lastTouched = 0;
};
