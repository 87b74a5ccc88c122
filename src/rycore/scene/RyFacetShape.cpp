#include "rycore/scene/RyFacetShape.h"

#include "rycore/undo/RyUndoStack.h"

/// Which mesh a shape holds.
class RyFacetMeshExchange : public RyUndoItem
{
public:
    explicit RyFacetMeshExchange(RyFacetShape *shape) : m_shape(shape), m_key(shape), m_mesh(shape->getFacetMesh()) {}
    void swap() override
    {
        if (!m_shape)
            return;
        std::swap(m_shape->m_mesh, m_mesh);
        emit m_shape->facetMeshChanged();
    }
    RyUndoKey key() const override { return {m_key, 1}; }
    bool isAlive() const override { return !m_shape.isNull(); }

private:
    QPointer<RyFacetShape> m_shape;
    const RyFacetShape *m_key;
    RyRef<RyFacetMesh> m_mesh;
};

RyFacetShape::RyFacetShape(RyFacetMesh *mesh) : m_mesh(mesh) {}

void RyFacetShape::setFacetMesh(RyFacetMesh *mesh)
{
    if (m_mesh.get() == mesh)
        return;
    ryUndoStack()->record<RyFacetMeshExchange>({this, 1}, this);
    m_mesh = RyRef<RyFacetMesh>(mesh);
    emit facetMeshChanged();
}
