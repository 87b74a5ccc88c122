#include "rycore/skin/RySkinInfluences.h"

#include "rycore/mesh/RyWeightMap.h"
#include "rycore/skin/RySkinKernels.h"

#include <algorithm>
#include <bit>
#include <limits>

RySkinChannel RySkinChannel::fromMap(const RyWeightMap *map)
{
    RySkinChannel channel;
    if (!map)
        return channel;
    const int count = map->getNumAffected();
    channel.vertices.assign(map->getAffectedIndices(), map->getAffectedIndices() + count);
    const quint16 *weights = map->getAffectedWeights();
    channel.weights.resize(size_t(count));
    for (size_t i = 0; i < size_t(count); ++i)
        channel.weights[i] = float(weights[i]) / RyWeightMap::FullWeight;
    return channel;
}

namespace {

void put(RySkinInfluences::Class &its, size_t entry, quint32 offset, float weight)
{
    if (its.wideOffsets.empty())
        its.offsets[entry] = quint16(offset);
    else
        its.wideOffsets[entry] = offset;
    its.weights[entry] = weight;
}

} // namespace

void RySkinInfluences::build(int vertexCount, const std::vector<RySkinChannel> &channels)
{
    m_vertexCount = m_placeCount = std::max(vertexCount, 0);
    m_channelCount = int(channels.size());
    m_classes.clear();
    m_unmoved.clear();

    const auto walk = [&](auto visit) {
        for (size_t k = 0; k < channels.size(); ++k) {
            const RySkinChannel &channel = channels[k];
            for (size_t i = 0; i < channel.vertices.size(); ++i) {
                const int vertex = channel.vertices[i];
                if (vertex >= 0 && vertex < m_vertexCount && channel.weights[i] != 0.0f)
                    visit(quint32(k), size_t(vertex), channel.weights[i]);
            }
        }
    };
    std::vector<int> influences(size_t(m_vertexCount), 0);
    m_movingChannels.assign(channels.size(), 0);
    walk([&](quint32 channel, size_t vertex, float) {
        ++influences[vertex];
        m_movingChannels[channel] = 1;
    });
    std::vector<size_t> next = addClasses(influences, 0, false);
    std::vector<Class *> classOf;
    for (Class &its : m_classes) {
        classOf.resize(size_t(its.influences) + 1, nullptr);
        classOf.back() = &its;
    }
    walk([&](quint32 channel, size_t vertex, float weight) {
        put(*classOf[size_t(influences[vertex])], next[vertex]++, channel * RySkinKernels::UnitsOfDelta, weight);
    });
    m_vertexClasses = m_classes.size();
    m_unmovedVertices = m_unmoved.size();
    finish();
}

void RySkinInfluences::setFurtherNormals(const std::vector<int> &vertices)
{
    m_classes.resize(m_vertexClasses);
    m_unmoved.resize(m_unmovedVertices);
    m_placeCount = m_vertexCount + int(vertices.size());
    // Where each vertex has its influences: class and element.
    std::vector<std::pair<int, int>> sources(size_t(m_vertexCount), {-1, 0});
    for (size_t c = 0; c < m_vertexClasses; ++c) {
        for (int element = 0; element < m_classes[c].count; ++element)
            sources[size_t(m_classes[c].placeOf(element))] = {int(c), element};
    }
    std::vector<int> influences;
    influences.reserve(vertices.size());
    for (int vertex : vertices) {
        const int source = vertex >= 0 && vertex < m_vertexCount ? sources[size_t(vertex)].first : -1;
        influences.push_back(source < 0 ? 0 : m_classes[size_t(source)].influences);
    }
    addClasses(influences, m_vertexCount, true);
    for (size_t c = m_vertexClasses; c < m_classes.size(); ++c) {
        Class &its = m_classes[c];
        size_t entry = 0;
        for (int place : its.places) {
            const auto [index, at] = sources[size_t(vertices[size_t(place - m_vertexCount)])];
            const Class &source = m_classes[size_t(index)];
            const size_t first = size_t(at) * size_t(its.influences);
            for (size_t i = first; i < first + size_t(its.influences); ++i)
                put(its, entry++, source.offsetAt(i), source.weights[i]);
        }
    }
    finish();
}

/// Makes a class of each number of influences, without what they are, and returns where the entries of each element
/// begin in its class.
std::vector<size_t> RySkinInfluences::addClasses(const std::vector<int> &influences, int firstPlace,
                                                 bool furtherNormals)
{
    const int most = influences.empty() ? 0 : *std::max_element(influences.begin(), influences.end());
    std::vector<int> sizes(size_t(most) + 1, 0);
    for (int count : influences)
        ++sizes[size_t(count)];
    std::vector<size_t> classOf(sizes.size(), 0);
    constexpr int NarrowChannels = (std::numeric_limits<quint16>::max() + 1) / int(RySkinKernels::UnitsOfDelta);
    const bool wide = m_channelCount > NarrowChannels;
    for (size_t count = 1; count < sizes.size(); ++count) {
        if (sizes[count] == 0)
            continue;
        classOf[count] = m_classes.size();
        Class &its = m_classes.emplace_back();
        its.influences = int(count);
        its.furtherNormals = furtherNormals;
        its.places.reserve(size_t(sizes[count]));
        const size_t entries = size_t(sizes[count]) * count;
        if (wide)
            its.wideOffsets.resize(entries);
        else
            its.offsets.resize(entries);
        its.weights.resize(entries);
    }
    std::vector<size_t> firstEntries(influences.size(), 0);
    for (size_t i = 0; i < influences.size(); ++i) {
        const int place = firstPlace + int(i);
        if (influences[i] == 0) {
            m_unmoved.push_back(place);
            continue;
        }
        Class &its = m_classes[classOf[size_t(influences[i])]];
        firstEntries[i] = its.places.size() * size_t(its.influences);
        its.places.push_back(place);
    }
    return firstEntries;
}

void RySkinInfluences::finish()
{
    for (Class &its : m_classes) {
        if (its.places.empty())
            continue;
        its.count = int(its.places.size());
        its.firstPlace = its.places.front();
        if (its.places.back() - its.firstPlace + 1 == its.count)
            its.places = {};
    }
    m_blocksOfChannel.clear();
    m_elementOfPlace.clear();
    makeRuns();
}

/// The first picture does without them.
void RySkinInfluences::makeBlocks()
{
    if (m_blocksOfChannel.size() == size_t(m_channelCount))
        return;
    m_blocksOfChannel.assign(size_t(m_channelCount), {});
    m_firstBlock.clear();
    m_blockCount = 0;
    for (const Class &its : m_classes) {
        m_firstBlock.push_back(m_blockCount);
        size_t entry = 0;
        for (int element = 0; element < its.count; ++element) {
            const int block = m_blockCount + element / BlockSize;
            const auto bit = quint16(1u << (element % BlockSize));
            for (int i = 0; i < its.influences; ++i) {
                std::vector<BlockMask> &masks = m_blocksOfChannel[its.offsetAt(entry++) / RySkinKernels::UnitsOfDelta];
                if (masks.empty() || masks.back().block != block)
                    masks.push_back({block, bit});
                else
                    masks.back().elements |= bit;
            }
        }
        m_blockCount += (its.count + BlockSize - 1) / BlockSize;
    }
}

void RySkinInfluences::makeRuns()
{
    m_all.clear();
    std::vector<int> done(m_classes.size(), 0);
    const auto take = [&](size_t c, int end) {
        if (end > done[c])
            m_all.push_back({int(c), done[c], end - done[c]});
        done[c] = end;
    };
    for (int end = StretchSize; end < m_vertexCount + StretchSize; end += StretchSize) {
        for (size_t c = 0; c < m_vertexClasses; ++c) {
            const Class &its = m_classes[c];
            if (its.places.empty())
                take(c, std::clamp(end - its.firstPlace, 0, its.count));
            else
                take(c,
                     int(std::lower_bound(its.places.begin() + done[c], its.places.end(), end) - its.places.begin()));
        }
    }
    for (size_t c = m_vertexClasses; c < m_classes.size(); ++c) {
        while (done[c] < m_classes[c].count)
            take(c, std::min(done[c] + StretchSize, m_classes[c].count));
    }
}

bool RySkinInfluences::isMovedAsWhole(const std::vector<char> &channels) const
{
    return std::equal(channels.begin(), channels.end(), m_movingChannels.begin(),
                      [](char marked, char moving) { return marked || !moving; });
}

std::vector<quint16> RySkinInfluences::masksOf(const std::vector<char> &channels)
{
    makeBlocks();
    std::vector<quint16> masks(size_t(m_blockCount), 0);
    for (size_t k = 0; k < m_blocksOfChannel.size(); ++k) {
        if (!channels[k])
            continue;
        for (const BlockMask &each : m_blocksOfChannel[k])
            masks[size_t(each.block)] |= each.elements;
    }
    return masks;
}

void RySkinInfluences::makeElements()
{
    if (!m_elementOfPlace.empty())
        return;
    makeBlocks();
    m_elementOfPlace.assign(size_t(m_placeCount), Unmoved);
    for (size_t c = 0; c < m_classes.size(); ++c) {
        for (int element = 0; element < m_classes[c].count; ++element)
            m_elementOfPlace[size_t(m_classes[c].placeOf(element))] = quint32(BlockSize * m_firstBlock[c] + element);
    }
}

RySkinInfluences::Part RySkinInfluences::movedBy(const std::vector<char> &channels)
{
    return partOf(masksOf(channels));
}

RySkinInfluences::Part RySkinInfluences::movedBy(const std::vector<char> &channels,
                                                 const std::vector<RyPointChanges::Range> &places)
{
    makeElements();
    std::vector<quint16> masks = masksOf(channels);
    for (const RyPointChanges::Range &range : places) {
        for (int place = range.first; place < range.first + range.count; ++place) {
            const quint32 element = m_elementOfPlace[size_t(place)];
            if (element != Unmoved)
                masks[element / BlockSize] |= quint16(1u << (element % BlockSize));
        }
    }
    return partOf(masks);
}

std::vector<int> RySkinInfluences::unmovedIn(const std::vector<RyPointChanges::Range> &places)
{
    makeElements();
    std::vector<int> unmoved;
    for (const RyPointChanges::Range &range : places) {
        for (int place = range.first; place < range.first + range.count; ++place) {
            if (m_elementOfPlace[size_t(place)] == Unmoved)
                unmoved.push_back(place);
        }
    }
    return unmoved;
}

RySkinInfluences::Part RySkinInfluences::partOf(const std::vector<quint16> &masks) const
{
    Part part;
    for (size_t c = 0; c < m_classes.size(); ++c) {
        const int blocks = (m_classes[c].count + BlockSize - 1) / BlockSize;
        const size_t firstRun = part.runs.size();
        const size_t firstPicks = part.picks.size();
        for (int b = 0; b < blocks; ++b) {
            const unsigned mask = masks[size_t(m_firstBlock[c] + b)];
            if (mask == 0)
                continue;
            const int first = b * BlockSize;
            const int size = std::min(BlockSize, m_classes[c].count - first);
            if (2 * std::popcount(mask) >= size) {
                Run *last = part.runs.size() > firstRun ? &part.runs.back() : nullptr;
                if (last && last->first + last->count == first && last->count < StretchSize)
                    last->count += size;
                else
                    part.runs.push_back({int(c), first, size});
                continue;
            }
            if (part.picks.size() == firstPicks || part.picks.back().count >= StretchSize)
                part.picks.push_back({int(c), part.picked.size(), 0});
            for (unsigned rest = mask; rest != 0; rest &= rest - 1)
                part.picked.push_back(first + std::countr_zero(rest));
            part.picks.back().count += std::popcount(mask);
        }
    }
    return part;
}

std::vector<char> RySkinInfluences::blocksOf(const std::vector<char> &channels)
{
    const std::vector<quint16> masks = masksOf(channels);
    std::vector<char> blocks(masks.size());
    std::transform(masks.begin(), masks.end(), blocks.begin(), [](quint16 mask) { return char(mask != 0); });
    return blocks;
}
