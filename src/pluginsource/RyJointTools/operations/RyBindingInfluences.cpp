#include "pluginsource/RyJointTools/operations/RyBindingInfluences.h"

#include "rycore/skin/RyParallel.h"

#include <algorithm>

/// So many vertices are filled at once, by one thread: their influences fit into its cache.
static constexpr int RangeSize = 8192;

/// The weights of the vertices of each range.
static std::vector<std::vector<RyBindingWeights>> cutIntoRanges(const std::vector<RyBindingWeights> &weights,
                                                                int vertexCount)
{
    std::vector<std::vector<RyBindingWeights>> ranges(size_t((vertexCount + RangeSize - 1) / RangeSize));
    for (RyBindingWeights rest : weights) {
        while (rest.count > 0) {
            const int range = *rest.vertices / RangeSize;
            const int *next = std::lower_bound(rest.vertices, rest.vertices + rest.count, (range + 1) * RangeSize);
            RyBindingWeights piece = rest;
            piece.count = int(next - rest.vertices);
            ranges[size_t(range)].push_back(piece);
            rest.vertices = next;
            rest.weights += piece.count;
            rest.count -= piece.count;
        }
    }
    return ranges;
}

RyBindingInfluences::RyBindingInfluences(const std::vector<RyBindingWeights> &weights, int vertexCount)
    : m_offsets(size_t(vertexCount) + 1, 0)
{
    const std::vector<std::vector<RyBindingWeights>> ranges = cutIntoRanges(weights, vertexCount);
    std::vector<size_t> firsts; // influence of each range
    size_t total = 0;
    for (const std::vector<RyBindingWeights> &pieces : ranges) {
        firsts.push_back(total);
        for (const RyBindingWeights &piece : pieces)
            total += size_t(piece.count);
    }
    m_influences = std::make_unique_for_overwrite<Influence[]>(total);
    RyParallel::forRanges(ranges.size(), 1, [&](size_t begin, size_t end) {
        for (size_t i = begin; i < end; ++i)
            fillRange(ranges[i], int(i) * RangeSize, firsts[i]);
    });
}

void RyBindingInfluences::fillRange(const std::vector<RyBindingWeights> &pieces, int firstVertex, size_t firstInfluence)
{
    // Ranges write places behind their own vertices alone, so that no two threads meet.
    size_t *counts = &m_offsets[size_t(firstVertex) + 1];
    const size_t vertexCount = std::min(size_t(RangeSize), m_offsets.size() - 1 - size_t(firstVertex));
    for (const RyBindingWeights &piece : pieces) {
        for (int i = 0; i < piece.count; ++i)
            ++counts[piece.vertices[i] - firstVertex];
    }
    std::vector<size_t> places(vertexCount);
    size_t place = firstInfluence;
    for (size_t v = 0; v < vertexCount; ++v) {
        places[v] = place;
        place += counts[v];
        counts[v] = place;
    }
    for (const RyBindingWeights &piece : pieces) {
        for (int i = 0; i < piece.count; ++i)
            m_influences[places[size_t(piece.vertices[i] - firstVertex)]++] = {piece.binding, piece.weights[i]};
    }
}
