#include "rycore/mesh/RyVertexMesh.h"

#include "rycore/undo/RyValueChange.h"

#include <utility>

struct RyVertexMesh::PositionsValue : RyValueOf<RyVertexMesh, std::vector<RyVec3>>
{
    static const Value &get(const RyVertexMesh &mesh) { return mesh.m_positions; }
    static void exchange(RyVertexMesh &mesh, Value &positions) { mesh.swapPositions(positions); }
};

RyVertexMesh::RyVertexMesh(QObject *parent) : RyElement(parent) {}

void RyVertexMesh::recordPositions()
{
    RyValueChange<PositionsValue>::record(this);
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
