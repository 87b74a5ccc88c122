#pragma once

#include <cstddef>
#include <vector>

/// A list of indices.
class RyIndexList
{
public:
    /// Sets the number of entries; new ones are 0.
    void preSizeArray(int count) { m_indices.resize(count < 0 ? 0 : std::size_t(count)); }
    void clear() { m_indices.clear(); }
    /// Inserts at its sorted place; an index that is already there is not added again.
    void addSortedIndex(int index);
    void append(int index) { m_indices.push_back(index); }
    int count() const { return int(m_indices.size()); }
    const int *getIndicesPtr() const { return m_indices.data(); }
    int *getIndicesPtr() { return m_indices.data(); }
    int getIndex(int i) const { return m_indices[std::size_t(i)]; }
    bool operator==(const RyIndexList &o) const { return m_indices == o.m_indices; }

private:
    std::vector<int> m_indices;
};
