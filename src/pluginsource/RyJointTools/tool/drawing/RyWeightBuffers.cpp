#include "rycore/viewport/RyGL.h"

#include "pluginsource/RyJointTools/tool/drawing/RyWeightBuffers.h"

#include "pluginsource/RyJointTools/tool/drawing/RyKeptWeights.h"

#include <utility>

template<typename T>
static size_t sizeOf(const std::vector<T> &values)
{
    return values.size() * sizeof(T);
}

void RyWeightBuffers::upload(unsigned target, unsigned &buffer, const void *data, size_t size)
{
    if (buffer == 0)
        glGenBuffers(1, &buffer);
    glBindBuffer(target, buffer);
    glBufferData(target, GLsizeiptr(size), data, GL_DYNAMIC_DRAW);
    glBindBuffer(target, 0);
    ++m_uploads;
}

void RyWeightBuffers::update(const RyKeptWeights &weights)
{
    if (std::exchange(m_facetsRevision, weights.facetsRevision()) != weights.facetsRevision()) {
        std::vector<unsigned> indices = weights.triangles();
        indices.insert(indices.end(), weights.quads().begin(), weights.quads().end());
        upload(GL_ELEMENT_ARRAY_BUFFER, m_indices, indices.data(), sizeOf(indices));
    }
    if (std::exchange(m_positionsRevision, weights.positionsRevision()) != weights.positionsRevision())
        upload(GL_ARRAY_BUFFER, m_positions, weights.positions().data(), sizeOf(weights.positions()));
    if (std::exchange(m_colorsRevision, weights.colorsRevision()) != weights.colorsRevision())
        upload(GL_ARRAY_BUFFER, m_colors, weights.colors().data(), sizeOf(weights.colors()));
}

void RyWeightBuffers::draw(const RyKeptWeights &weights, bool withColors) const
{
    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    glBindBuffer(GL_ARRAY_BUFFER, m_positions);
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(3, GL_FLOAT, 0, nullptr);
    if (withColors) {
        glBindBuffer(GL_ARRAY_BUFFER, m_colors);
        glEnableClientState(GL_COLOR_ARRAY);
        glColorPointer(4, GL_UNSIGNED_BYTE, 0, nullptr);
    }
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_indices);
    glPushMatrix();
    glMultMatrixf(weights.toWorld().data());
    if (!weights.triangles().empty())
        glDrawElements(GL_TRIANGLES, GLsizei(weights.triangles().size()), GL_UNSIGNED_INT, nullptr);
    if (!weights.quads().empty())
        glDrawElements(GL_QUADS, GLsizei(weights.quads().size()), GL_UNSIGNED_INT,
                       reinterpret_cast<const void *>(sizeOf(weights.triangles())));
    glPopMatrix();
    glPopClientAttrib();
}
