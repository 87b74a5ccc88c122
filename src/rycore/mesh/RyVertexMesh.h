#pragma once

#include "rycore/base/RyElement.h"
#include "rycore/base/RyRefCounted.h"
#include "rycore/math/RyBox3.h"

#include <vector>

/// Points in figure space, in centimetres. Counted: made with count 0.
class RyVertexMesh : public RyElement, public RyRefCountedItem
{
    Q_OBJECT
public:
    explicit RyVertexMesh(QObject *parent = nullptr);

    int getNumVertices() const { return int(m_positions.size()); }
    RyVec3 getVertex(int index) const { return m_positions[size_t(index)]; }
    const std::vector<RyVec3> &getPositions() const { return m_positions; }
    /// Replaces all positions; undoable where a hold is open.
    void setPositions(std::vector<RyVec3> positions);
    /// Does nothing for an index out of range.
    void setVertex(int index, const RyVec3 &position);
    RyBox3 getBoundingBox() const;
    /// Grows with every change of positions or facets; caches compare it.
    quint64 revision() const { return m_revision; }

signals:
    /// Positions or facets changed; once per outermost edit.
    void meshChanged();
    /// The same, and also when face groups changed: whatever of the mesh a file or a picture shows.
    void contentChanged();

protected:
    void editBegun() override;
    void editFinished() override;
    void editCancelled() override;
    /// Counts a change of positions or facets and announces it, within an edit at its end.
    void touch();
    /// Emits contentChanged, within an edit at its end.
    void announceContent();
    /// Exchanges all positions, unrecorded.
    void swapPositions(std::vector<RyVec3> &positions);

private:
    struct PositionsValue;
    void recordPositions();

    std::vector<RyVec3> m_positions;
    std::vector<RyVec3> m_editSnapshot;
    quint64 m_revisionBeforeEdit = 0;
    quint64 m_revision = 1;
    bool m_contentTouched = false; // within an edit
};
