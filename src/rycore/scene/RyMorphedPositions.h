#pragma once

#include "rycore/math/RyVec3.h"
#include "rycore/scene/RyPointChanges.h"

#include <QPointer>

#include <vector>

class RyMorph;
class RyVertexMesh;

/// The positions of a mesh with the morphs of its shape: base + sum of value * delta, summed in double precision in the
/// order of the morphs and rounded once. Vertices that a changed morph moves are worked out again from the base, all
/// others stay, so that whatever way the values went the positions depend on the values alone.
class RyMorphedPositions
{
public:
    /// The morphs are others than in the last call.
    void forgetMorphs() { m_isKnown = false; }
    /// While all values are 0 these are the mesh's own. Valid until the next call and until the mesh changes.
    const std::vector<RyVec3> &update(const RyVertexMesh &mesh, const std::vector<RyMorph *> &morphs);
    /// Of the positions, as of the last update.
    const RyPointChanges &changes() const { return m_changes; }
    bool areMorphed() const { return m_areMorphed; }
    /// Vertices worked out by the last update that had something to do, and by all of them.
    qint64 lastTouched() const { return m_lastTouched; }
    qint64 totalTouched() const { return m_totalTouched; }

private:
    bool isOther(const RyVertexMesh &mesh) const;
    std::vector<int> takeValues(const std::vector<RyMorph *> &morphs);
    void computeAll(const std::vector<RyVec3> &base, const std::vector<RyMorph *> &morphs);
    void compute(const std::vector<RyVec3> &base, const std::vector<RyMorph *> &morphs,
                 const std::vector<int> &vertices);

    QPointer<const RyVertexMesh> m_mesh;
    quint64 m_meshRevision = 0;
    bool m_isKnown = false;
    std::vector<float> m_values;     // of each morph, as they are in the positions
    std::vector<RyVec3> m_positions; // empty until a morph has a value; from then on in step with the values
    bool m_areMorphed = false;
    RyPointChanges m_changes;
    qint64 m_lastTouched = 0;
    qint64 m_totalTouched = 0;
};
