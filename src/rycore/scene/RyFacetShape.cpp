#include "rycore/scene/RyFacetShape.h"

#include "rycore/undo/RyUndoStack.h"

static constexpr quintptr MeshAspect = 100;
static constexpr quintptr PartsAspect = 101;

/// Which mesh a shape holds.
class RyFacetMeshExchange : public RyUndoItem
{
public:
    explicit RyFacetMeshExchange(RyFacetShape *shape) : m_shape(shape), m_key(shape), m_mesh(shape->getFacetMesh()) {}
    void swap() override
    {
        if (!m_shape)
            return;
        const RyRef<RyFacetMesh> now = m_shape->m_mesh;
        m_shape->applyMesh(m_mesh);
        m_mesh = now;
    }
    RyUndoKey key() const override { return {m_key, MeshAspect}; }
    bool isAlive() const override { return !m_shape.isNull(); }

private:
    QPointer<RyFacetShape> m_shape;
    const RyFacetShape *m_key;
    RyRef<RyFacetMesh> m_mesh;
};

/// Which parts it has.
class RyMeshPartsExchange : public RyUndoItem
{
public:
    explicit RyMeshPartsExchange(RyFacetShape *shape) : m_shape(shape), m_key(shape), m_parts(shape->getParts()) {}
    void swap() override
    {
        if (!m_shape)
            return;
        std::swap(m_shape->m_parts, m_parts);
        emit m_shape->geometryChanged();
    }
    RyUndoKey key() const override { return {m_key, PartsAspect}; }
    bool isAlive() const override { return !m_shape.isNull(); }

private:
    QPointer<RyFacetShape> m_shape;
    const RyFacetShape *m_key;
    std::shared_ptr<const RyMeshParts> m_parts;
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
    if (m_mesh)
        connect(m_mesh.get(), &RyFacetMesh::contentChanged, this, &RyShape::geometryChanged);
    emit facetMeshChanged();
    emit geometryChanged();
}

void RyFacetShape::setParts(std::shared_ptr<const RyMeshParts> parts)
{
    if (parts == m_parts)
        return;
    ryUndoStack()->record<RyMeshPartsExchange>({this, PartsAspect}, this);
    m_parts = std::move(parts);
    emit geometryChanged();
}

void RyFacetShape::setFacetMesh(RyFacetMesh *mesh)
{
    if (m_mesh.get() == mesh)
        return;
    const RyRef<RyFacetMesh> guard(mesh);
    ryUndoStack()->record<RyFacetMeshExchange>({this, MeshAspect}, this);
    applyMesh(guard);
}
