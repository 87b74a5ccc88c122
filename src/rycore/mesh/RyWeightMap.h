#pragma once

#include "rycore/base/RyElement.h"
#include "rycore/base/RyRefCounted.h"

#include <vector>

/// One unsigned 16-bit weight per vertex, `FullWeight` = 1.0. Kept sparse (sorted indices and weights of the affected
/// vertices) until `getWeights` asks for the dense array.
class RyWeightMap : public RyElement, public RyRefCountedItem
{
    Q_OBJECT
public:
    static constexpr quint16 FullWeight = 65535;

    explicit RyWeightMap(const QString &name = QString());

    /// Sets the count; all weights become zero.
    void setNumWeights(int count);
    int getNumWeights() const { return m_count; }
    /// The dense array, to read or write; writes belong between beginEdit and finishEdit, which record and announce
    /// them. Null when empty. The pointer holds until the count changes, `compact` runs or an undo step touches the
    /// map.
    quint16 *getWeights();
    const quint16 *getWeights() const;
    /// 0 outside the range.
    quint16 getWeight(int vertex) const;
    float getFloatWeight(int vertex) const { return float(getWeight(vertex)) / FullWeight; }
    /// No weights at all (count 0).
    bool isEmpty() const { return m_count == 0; }

    /// Vertices with a weight above zero, ascending, and their weights in step.
    int getNumAffected() const;
    const int *getAffectedIndices() const;
    const quint16 *getAffectedWeights() const;
    /// Replaces all weights. `indices` ascending, below `count`, one weight each; entries that break this and zero
    /// weights are dropped.
    void setAffected(int count, std::vector<int> indices, std::vector<quint16> weights);
    /// Drops the dense array when there is one.
    void compact();

    /// A deep copy with the same name.
    RyWeightMap *copy() const;
    /// Grows with every change; caches compare it.
    quint64 revision() const { return m_revision; }

signals:
    /// Once per outermost edit.
    void weightsChanged();

protected:
    void editBegun() override;
    void editFinished() override;
    void editCancelled() override;

private:
    struct State
    {
        int count = 0;
        std::vector<int> indices;
        std::vector<quint16> weights;
    };
    struct WeightsValue;
    State state() const;
    void restore(State state);
    void makeSparse() const;
    void makeDense() const;
    void recordChange();
    void touch();

    int m_count = 0;
    mutable std::vector<quint16> m_dense; // empty, or m_count entries
    mutable std::vector<int> m_indices;   // valid while m_sparseValid
    mutable std::vector<quint16> m_weights;
    mutable bool m_sparseValid = true;
    State m_editSnapshot;
    quint64 m_revision = 1;
};
