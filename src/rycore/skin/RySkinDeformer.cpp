#include "rycore/skin/RySkinDeformer.h"

#include "rycore/math/RyFastMath.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/skin/RyParallel.h"
#include "rycore/skin/RySkinKernels.h"

#include <algorithm>
#include <cstring>

RySkinDeformer::Channel RySkinDeformer::Channel::fromMap(const RyWeightMap *map)
{
    Channel channel;
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

void RySkinDeformer::setInfluences(int vertexCount, const std::vector<Channel> &channels)
{
    ++m_builds;
    m_vertexCount = std::max(vertexCount, 0);
    m_channelCount = int(channels.size());
    m_resultValid = false;
    m_deltas.assign(size_t(m_channelCount), Delta());
    m_classes.clear();
    m_unmoved.clear();

    const auto walk = [&](auto visit) {
        for (int k = 0; k < m_channelCount; ++k) {
            const Channel &channel = channels[size_t(k)];
            for (size_t i = 0; i < channel.vertices.size(); ++i) {
                const int vertex = channel.vertices[i];
                if (vertex >= 0 && vertex < m_vertexCount && channel.weights[i] != 0.0f)
                    visit(k, size_t(vertex), channel.weights[i]);
            }
        }
    };
    std::vector<int> influences(size_t(m_vertexCount), 0);
    walk([&](int, size_t vertex, float) { ++influences[vertex]; });

    // Vertices that nothing moves are in no class.
    const int most = influences.empty() ? 0 : *std::max_element(influences.begin(), influences.end());
    std::vector<int> classOf(size_t(most) + 1, -1);
    std::vector<int> sizeOf(size_t(most) + 1, 0);
    for (int count : influences)
        ++sizeOf[size_t(count)];
    for (int count = 1; count <= most; ++count) {
        const size_t size = size_t(sizeOf[size_t(count)]);
        if (size == 0)
            continue;
        classOf[size_t(count)] = int(m_classes.size());
        Class added;
        added.influences = count;
        added.vertices.reserve(size);
        added.offsets.resize(size * size_t(count));
        added.weights.resize(size * size_t(count));
        m_classes.push_back(std::move(added));
    }
    std::vector<size_t> next(size_t(m_vertexCount), 0);
    for (size_t vertex = 0; vertex < influences.size(); ++vertex) {
        if (influences[vertex] == 0) {
            m_unmoved.push_back(int(vertex));
            continue;
        }
        Class &its = m_classes[size_t(classOf[size_t(influences[vertex])])];
        next[vertex] = its.vertices.size() * size_t(its.influences);
        its.vertices.push_back(int(vertex));
    }
    walk([&](int channel, size_t vertex, float weight) {
        Class &its = m_classes[size_t(classOf[size_t(influences[vertex])])];
        its.offsets[next[vertex]] = quint32(size_t(channel) * sizeof(Delta));
        its.weights[next[vertex]++] = weight;
    });
    makeBlocks();
}

void RySkinDeformer::makeBlocks()
{
    m_blocks.clear();
    m_blocksOfChannel.assign(size_t(m_channelCount), {});
    for (size_t c = 0; c < m_classes.size(); ++c) {
        const Class &its = m_classes[c];
        const int count = int(its.vertices.size());
        for (int first = 0; first < count; first += BlockSize) {
            const Block block{int(c), first, std::min(BlockSize, count - first)};
            const int number = int(m_blocks.size());
            m_blocks.push_back(block);
            const size_t begin = size_t(first) * size_t(its.influences);
            const size_t end = begin + size_t(block.count) * size_t(its.influences);
            for (size_t i = begin; i < end; ++i) {
                std::vector<int> &list = m_blocksOfChannel[its.offsets[i] / sizeof(Delta)];
                if (list.empty() || list.back() != number)
                    list.push_back(number);
            }
        }
    }
}

bool RySkinDeformer::takeMaps(const std::vector<RyAffine> &maps, std::vector<char> &changed)
{
    bool any = false;
    for (size_t k = 0; k < size_t(m_channelCount); ++k) {
        Delta delta;
        for (int i = 0; i < 4; ++i) {
            for (int j = 0; j < 3; ++j)
                delta.rows[4 * i + j] = RyFastMath::toFloat(maps[k].m[i][j] - (i == j ? 1.0 : 0.0));
        }
        changed[k] = std::memcmp(&m_deltas[k], &delta, sizeof delta) != 0;
        any = any || changed[k];
        m_deltas[k] = delta;
    }
    return any;
}

const std::vector<RyVec3> &RySkinDeformer::deform(const std::vector<RyVec3> &rest, const std::vector<RyAffine> &maps,
                                                  const void *source, quint64 revision)
{
    m_lastTouched = 0;
    if (int(rest.size()) != m_vertexCount || maps.size() < size_t(m_channelCount)) {
        m_resultValid = false;
        m_result = rest;
        return m_result;
    }
    std::vector<char> changed(size_t(m_channelCount), 0);
    const bool moved = takeMaps(maps, changed);
    const bool sameRest = m_resultValid && source && source == m_source && revision == m_revision;
    m_source = source;
    m_revision = revision;
    m_resultValid = true;
    if (sameRest && !moved)
        return m_result;

    std::vector<Block> pending;
    if (sameRest) {
        std::vector<char> marked(m_blocks.size(), 0);
        for (size_t k = 0; k < changed.size(); ++k) {
            if (!changed[k])
                continue;
            for (int block : m_blocksOfChannel[k])
                marked[size_t(block)] = 1;
        }
        for (size_t i = 0; i < m_blocks.size(); ++i) {
            if (marked[i])
                pending.push_back(m_blocks[i]);
        }
    } else {
        m_result.resize(rest.size());
        for (int vertex : m_unmoved)
            m_result[size_t(vertex)] = rest[size_t(vertex)];
    }
    const std::vector<Block> &blocks = sameRest ? pending : m_blocks;
    for (const Block &block : blocks)
        m_lastTouched += block.count;
    m_totalTouched += m_lastTouched;

    const auto compute = [&](size_t begin, size_t end) {
        for (size_t i = begin; i < end; ++i)
            computeBlock(blocks[i], rest.data());
    };
    if (m_lastTouched > ThreadedAbove)
        RyParallel::forRanges(blocks.size(), 16, compute);
    else
        compute(0, blocks.size());
    return m_result;
}

void RySkinDeformer::computeBlock(const Block &block, const RyVec3 *rest)
{
    const Class &its = m_classes[size_t(block.classIndex)];
    const size_t offset = size_t(block.first) * size_t(its.influences);
    const RySkinKernels::Task task{rest,
                                   m_result.data(),
                                   m_deltas.front().rows,
                                   its.vertices.data() + block.first,
                                   its.offsets.data() + offset,
                                   its.weights.data() + offset,
                                   block.count,
                                   its.influences};
    if (m_path != Path::Plain && RySkinKernels::hasAvx2())
        RySkinKernels::blendAvx2(task);
    else
        RySkinKernels::blendPlain(task);
}

void RySkinDeformer::setPath(Path path)
{
    m_path = path;
    m_resultValid = false;
}

bool RySkinDeformer::hasAvx2()
{
    return RySkinKernels::hasAvx2();
}
