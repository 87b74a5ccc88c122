#pragma once

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyMeshPart.h"
#include "rycore/scene/RyShape.h"
#include "rycore/scene/RyShapeNormals.h"

/// A shape made of facets.
class RyFacetShape : public RyShape
{
    Q_OBJECT
public:
    explicit RyFacetShape(RyFacetMesh *mesh = nullptr);

    RyVertexMesh *getGeometry() const override { return m_mesh.get(); }
    /// Made when they are first asked for.
    const RyShapeNormals *getNormals() const override;
    RyFacetMesh *getFacetMesh() const { return m_mesh.get(); }
    /// Undoable where a hold is open.
    virtual void setFacetMesh(RyFacetMesh *mesh);

    /// Parts as the file had them; null when the shape did not come from one.
    const std::shared_ptr<const RyMeshParts> &getParts() const { return m_parts; }
    /// Undoable where a hold is open.
    void setParts(std::shared_ptr<const RyMeshParts> parts);

signals:
    void facetMeshChanged();

private:
    struct MeshValue;
    struct PartsValue;
    void applyMesh(const RyRef<RyFacetMesh> &mesh);
    RyRef<RyFacetMesh> m_mesh;
    std::shared_ptr<const RyMeshParts> m_parts;
    mutable RyShapeNormals m_normals;
};
