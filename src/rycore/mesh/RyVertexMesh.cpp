#include "rycore/mesh/RyVertexMesh.h"

#include "rycore/undo/RyUndoStack.h"

#include <QPointer>

#include <utility>

namespace {

constexpr quintptr PositionsAspect = 1;

} // namespace

/// All positions of a mesh.
class RyPositionsChange : public RyUndoItem
{
public:
    explicit RyPositionsChange(RyVertexMesh *mesh) : m_mesh(mesh), m_key(mesh), m_positions(mesh->m_positions) {}
    void swap() override
    {
        if (m_mesh)
            m_mesh->swapPositions(m_positions);
    }
    RyUndoKey key() const override { return {m_key, PositionsAspect}; }
    bool isAlive() const override { return !m_mesh.isNull(); }

private:
    QPointer<RyVertexMesh> m_mesh;
    const void *m_key;
    std::vector<RyVec3> m_positions;
};

RyVertexMesh::RyVertexMesh(QObject *parent) : RyElement(parent) {}

void RyVertexMesh::recordPositions()
{
    ryUndoStack()->record<RyPositionsChange>({this, PositionsAspect}, this);
}

void RyVertexMesh::swapPositions(std::vector<RyVec3> &positions)
{
    if (m_positions == positions)
        return;
    m_positions.swap(positions);
    touch();
}

void RyVertexMesh::setPositions(std::vector<RyVec3> positions)
{
    if (positions == m_positions)
        return;
    recordPositions();
    swapPositions(positions);
}

void RyVertexMesh::setVertex(int index, const RyVec3 &position)
{
    if (index < 0 || index >= getNumVertices() || m_positions[size_t(index)] == position)
        return;
    recordPositions();
    m_positions[size_t(index)] = position;
    touch();
}

RyBox3 RyVertexMesh::getBoundingBox() const
{
    RyBox3 box;
    for (const RyVec3 &position : m_positions)
        box.include(position);
    return box;
}

void RyVertexMesh::touch()
{
    ++m_revision;
    if (editLevel() == 0)
        emit meshChanged();
    announceContent();
}

void RyVertexMesh::announceContent()
{
    if (editLevel() == 0)
        emit contentChanged();
    else
        m_contentTouched = true;
}

void RyVertexMesh::editBegun()
{
    m_editSnapshot = m_positions;
    m_revisionBeforeEdit = m_revision;
    m_contentTouched = false;
}

void RyVertexMesh::editFinished()
{
    m_editSnapshot = {};
    if (m_revision != m_revisionBeforeEdit)
        emit meshChanged();
    if (std::exchange(m_contentTouched, false))
        emit contentChanged();
}

void RyVertexMesh::editCancelled()
{
    swapPositions(m_editSnapshot);
    m_editSnapshot = {};
}
