#include "rycore/mesh/RyWeightMap.h"

#include "rycore/undo/RyValueChange.h"

#include <algorithm>

/// Count and weights, kept sparse.
struct RyWeightMap::WeightsValue : RyValueOf<RyWeightMap, State>
{
    static State get(const RyWeightMap &map) { return map.state(); }
    static void put(RyWeightMap &map, State &&state) { map.restore(std::move(state)); }
};

/// Assigning an empty list would keep it.
static void freeMemory(std::vector<quint16> &weights)
{
    std::vector<quint16>().swap(weights);
}

RyWeightMap::RyWeightMap(const QString &name)
{
    setObjectName(name);
}

void RyWeightMap::setNumWeights(int count)
{
    recordChange();
    m_count = std::max(count, 0);
    freeMemory(m_dense);
    m_indices.clear();
    m_weights.clear();
    m_sparseValid = true;
    touch();
}

quint16 *RyWeightMap::getWeights()
{
    makeDense();
    // The caller may write.
    m_sparseValid = false;
    ++m_revision;
    return m_count > 0 ? m_dense.data() : nullptr;
}

const quint16 *RyWeightMap::getWeights() const
{
    makeDense();
    return m_count > 0 ? m_dense.data() : nullptr;
}

quint16 RyWeightMap::getWeight(int vertex) const
{
    if (vertex < 0 || vertex >= m_count)
        return 0;
    if (!m_dense.empty())
        return m_dense[size_t(vertex)];
    const auto place = std::lower_bound(m_indices.begin(), m_indices.end(), vertex);
    return place != m_indices.end() && *place == vertex ? m_weights[size_t(place - m_indices.begin())] : quint16(0);
}

int RyWeightMap::getNumAffected() const
{
    makeSparse();
    return int(m_indices.size());
}

const int *RyWeightMap::getAffectedIndices() const
{
    makeSparse();
    return m_indices.data();
}

const quint16 *RyWeightMap::getAffectedWeights() const
{
    makeSparse();
    return m_weights.data();
}

/// Whether entries can be taken as they are, without slack.
static bool isSound(int count, const std::vector<int> &indices, const std::vector<quint16> &weights)
{
    if (indices.size() != weights.size() || indices.capacity() != indices.size() ||
        weights.capacity() != weights.size())
        return false;
    int last = -1;
    bool sound = true;
    for (size_t i = 0; i < indices.size(); ++i) {
        sound &= weights[i] != 0 && indices[i] > last;
        last = indices[i];
    }
    return sound && last < count;
}

void RyWeightMap::setAffected(int count, std::vector<int> indices, std::vector<quint16> weights)
{
    recordChange();
    State state;
    state.count = std::max(count, 0);
    const size_t entries = std::min(indices.size(), weights.size());
    if (isSound(state.count, indices, weights)) {
        state.indices = std::move(indices);
        state.weights = std::move(weights);
        restore(std::move(state));
        return;
    }
    // Maps are many and live long: no slack.
    state.indices.reserve(entries);
    state.weights.reserve(entries);
    int last = -1;
    for (size_t i = 0; i < entries; ++i) {
        if (weights[i] == 0 || indices[i] <= last || indices[i] >= state.count)
            continue;
        last = indices[i];
        state.indices.push_back(indices[i]);
        state.weights.push_back(weights[i]);
    }
    restore(std::move(state));
}

void RyWeightMap::compact()
{
    makeSparse();
    freeMemory(m_dense);
}

RyWeightMap *RyWeightMap::copy() const
{
    auto *map = new RyWeightMap(objectName());
    map->restore(state());
    return map;
}

RyWeightMap::State RyWeightMap::state() const
{
    makeSparse();
    return {m_count, m_indices, m_weights};
}

void RyWeightMap::restore(State state)
{
    m_count = state.count;
    m_indices = std::move(state.indices);
    m_weights = std::move(state.weights);
    m_sparseValid = true;
    freeMemory(m_dense);
    touch();
}

void RyWeightMap::makeSparse() const
{
    if (m_sparseValid)
        return;
    m_indices.clear();
    m_weights.clear();
    const auto affected = m_dense.size() - size_t(std::count(m_dense.begin(), m_dense.end(), quint16(0)));
    m_indices.reserve(affected);
    m_weights.reserve(affected);
    for (size_t i = 0; i < m_dense.size(); ++i) {
        if (m_dense[i] != 0) {
            m_indices.push_back(int(i));
            m_weights.push_back(m_dense[i]);
        }
    }
    // While an edit runs, more may be written through the pointer.
    m_sparseValid = editLevel() == 0;
}

void RyWeightMap::makeDense() const
{
    if (!m_dense.empty() || m_count == 0)
        return;
    m_dense.assign(size_t(m_count), 0);
    for (size_t i = 0; i < m_indices.size(); ++i)
        m_dense[size_t(m_indices[i])] = m_weights[i];
}

void RyWeightMap::recordChange()
{
    RyValueChange<WeightsValue>::record(this);
}

void RyWeightMap::touch()
{
    ++m_revision;
    if (editLevel() == 0)
        emit weightsChanged();
}

void RyWeightMap::editBegun()
{
    recordChange();
    m_editSnapshot = state();
}

void RyWeightMap::editFinished()
{
    m_editSnapshot = {};
    if (!m_dense.empty())
        m_sparseValid = false;
    ++m_revision;
    emit weightsChanged();
}

void RyWeightMap::editCancelled()
{
    restore(std::move(m_editSnapshot));
    m_editSnapshot = {};
}
