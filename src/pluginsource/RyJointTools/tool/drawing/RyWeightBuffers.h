#pragma once

#include <QtGlobal>

#include <cstddef>

class RyKeptWeights;

/// The arrays of one side of a joint in the memory of one GL context. Names are deleted with their context, not before.
class RyWeightBuffers
{
public:
    /// Uploads what differs.
    void update(const RyKeptWeights &weights);
    /// In the space of the modelview matrix times that of the weights, with the polygon mode that is set.
    void draw(const RyKeptWeights &weights, bool withColors) const;
    int uploads() const { return m_uploads; }

private:
    void upload(unsigned target, unsigned &buffer, const void *data, size_t size);

    unsigned m_indices = 0; // of triangles, then of quads
    unsigned m_positions = 0;
    unsigned m_colors = 0;
    quint64 m_facetsRevision = 0;
    quint64 m_positionsRevision = 0;
    quint64 m_colorsRevision = 0;
    int m_uploads = 0;
};
