#include "rycore/scene/RyFacetShape.h"

#include "rycore/undo/RyValueChange.h"

/// Which mesh it holds.
struct RyFacetShape::MeshValue : RyValueOf<RyFacetShape, RyRef<RyFacetMesh>>
{
    static const Value &get(const RyFacetShape &shape) { return shape.m_mesh; }
    static void put(RyFacetShape &shape, const Value &mesh) { shape.applyMesh(mesh); }
};

/// Which parts it has.
struct RyFacetShape::PartsValue : RyValueOf<RyFacetShape, std::shared_ptr<const RyMeshParts>>
{
    static const Value &get(const RyFacetShape &shape) { return shape.m_parts; }
    static void exchange(RyFacetShape &shape, Value &parts)
    {
        shape.m_parts.swap(parts);
        emit shape.geometryChanged();
    }
};

RyFacetShape::RyFacetShape(RyFacetMesh *mesh)
{
    if (mesh)
        applyMesh(RyRef<RyFacetMesh>(mesh));
}

void RyFacetShape::applyMesh(const RyRef<RyFacetMesh> &mesh)
{
    if (m_mesh)
        disconnect(m_mesh.get(), nullptr, this, nullptr);
    m_mesh = mesh;
    m_normals = RyShapeNormals();
    if (m_mesh)
        connect(m_mesh.get(), &RyFacetMesh::contentChanged, this, &RyShape::geometryChanged);
    emit facetMeshChanged();
    emit geometryChanged();
}

const RyShapeNormals *RyFacetShape::getNormals() const
{
    if (!m_mesh)
        return nullptr;
    const std::vector<RyVec3> &positions = getCurrentPositions();
    m_normals.update(*m_mesh, m_parts, positions, morphedPositions().changes());
    return &m_normals;
}

void RyFacetShape::setParts(std::shared_ptr<const RyMeshParts> parts)
{
    if (parts == m_parts)
        return;
    RyValueChange<PartsValue>::record(this);
    m_parts = std::move(parts);
    emit geometryChanged();
}

void RyFacetShape::setFacetMesh(RyFacetMesh *mesh)
{
    if (m_mesh.get() == mesh)
        return;
    const RyRef<RyFacetMesh> guard(mesh);
    RyValueChange<MeshValue>::record(this);
    applyMesh(guard);
}
