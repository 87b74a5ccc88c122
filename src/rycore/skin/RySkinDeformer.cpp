#include "rycore/skin/RySkinDeformer.h"

#include "rycore/math/RyFastMath.h"
#include "rycore/skin/RyParallel.h"

#include <algorithm>
#include <cstring>

using RySkinKernels::Delta;
using RySkinKernels::Output;
using RySkinKernels::Task;

namespace {

Delta deltaOf(const RyAffine &map)
{
    Delta delta;
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 3; ++j)
            delta.rows[4 * i + j] = RyFastMath::toFloat(map.m[i][j] - (i == j ? 1.0 : 0.0));
    }
    for (int i = 0; i < 3; ++i)
        delta.rows[4 * i + 3] = delta.rows[12 + i];
    return delta;
}

/// The linear part, with the translation of `points`.
Delta normalDeltaOf(const RyAffine &map, const Delta &points)
{
    Delta delta = deltaOf(map);
    for (int i = 0; i < 4; ++i)
        delta.rows[4 * i + 3] = points.rows[4 * i + 3];
    for (int i = 12; i < 16; ++i)
        delta.rows[i] = points.rows[i];
    return delta;
}

bool differ(const Delta &a, const Delta &b)
{
    return std::memcmp(&a, &b, sizeof a) != 0;
}

/// Whether it pays to look for what lies at these places.
bool areFew(const std::vector<RyPointChanges::Range> &ranges, int placeCount)
{
    int count = 0;
    for (const RyPointChanges::Range &range : ranges)
        count += range.count;
    return 2 * qint64(count) <= placeCount;
}

} // namespace

void RySkinDeformer::setInfluences(int vertexCount, const std::vector<Channel> &channels)
{
    ++m_builds;
    m_resultValid = false;
    m_influences.build(vertexCount, channels);
    m_deltas.assign(channels.size(), Delta());
    m_normalDeltas.assign(channels.size(), Delta());
    m_ownNormalMaps.assign(channels.size(), 0);
    m_ownNormalBlocks.clear();
}

void RySkinDeformer::setFurtherNormals(const std::vector<int> &vertices)
{
    m_resultValid = false;
    m_influences.setFurtherNormals(vertices);
    // Blocks are numbered anew.
    m_ownNormalMaps.assign(m_ownNormalMaps.size(), 0);
    m_ownNormalBlocks.clear();
}

bool RySkinDeformer::takeMaps(const std::vector<RyAffine> &maps, const std::vector<RyAffine> *normalMaps,
                              std::vector<char> &changed)
{
    bool any = false;
    bool otherOwn = false;
    bool anyOwn = false;
    for (size_t k = 0; k < m_deltas.size(); ++k) {
        const Delta delta = deltaOf(maps[k]);
        const Delta normal = normalMaps ? normalDeltaOf((*normalMaps)[k], delta) : delta;
        const char own = differ(delta, normal);
        otherOwn = otherOwn || own != m_ownNormalMaps[k];
        anyOwn = anyOwn || own;
        changed[k] = differ(m_deltas[k], delta) || differ(m_normalDeltas[k], normal);
        any = any || changed[k];
        m_deltas[k] = delta;
        m_normalDeltas[k] = normal;
        m_ownNormalMaps[k] = own;
    }
    if (otherOwn)
        m_ownNormalBlocks = anyOwn ? m_influences.blocksOf(m_ownNormalMaps) : std::vector<char>();
    return any;
}

const std::vector<RyVec3> &RySkinDeformer::deform(const std::vector<RyVec3> &rest, const std::vector<RyAffine> &maps,
                                                  const void *source, quint64 revision, const RySkinNormals &normals,
                                                  const RyPointChanges *changes)
{
    m_lastTouched = 0;
    const size_t channelCount = m_deltas.size();
    const size_t normalCount = normals.rest ? normals.rest->size() : 0;
    if (int(rest.size()) != getNumVertices() || maps.size() < channelCount ||
        (normals.rest && int(normalCount) != m_influences.placeCount())) {
        m_resultValid = false;
        m_positions = rest;
        m_normals = normals.rest ? *normals.rest : std::vector<RyVec3>();
        m_changes.markAll(int(std::max(m_positions.size(), m_normals.size())));
        return m_positions;
    }
    std::vector<char> changed(channelCount, 0);
    const bool moved = takeMaps(maps, normals.maps, changed);
    const bool sameSource = m_resultValid && source && source == m_source && normalCount == m_normals.size();
    const bool sameRest = sameSource && revision == m_revision;
    std::vector<RyPointChanges::Range> others; // places of which the rest differs
    if (sameSource && !sameRest && changes)
        others = changes->since(m_revision);
    const bool mostlySame = sameRest || (sameSource && changes && areFew(others, m_influences.placeCount()));
    m_source = source;
    m_revision = revision;
    m_resultValid = true;
    if (mostlySame && !moved && others.empty())
        return m_positions;

    m_restPositions = rest.data();
    m_restNormals = normals.rest ? normals.rest->data() : nullptr;
    if (mostlySame && !m_influences.isMovedAsWhole(changed)) {
        computeMovedBy(changed, others);
    } else {
        m_positions.resize(rest.size());
        m_normals.resize(normalCount);
        if (!sameRest)
            copyRest(m_influences.unmoved());
        computeAll();
    }
    m_totalTouched += m_lastTouched;
    return m_positions;
}

void RySkinDeformer::copyRest(const std::vector<int> &places)
{
    for (const int each : places) {
        const auto place = size_t(each);
        if (place < m_positions.size())
            m_positions[place] = m_restPositions[place];
        if (place < m_normals.size())
            m_normals[place] = m_restNormals[place];
    }
}

void RySkinDeformer::count(int classIndex, int elements)
{
    if (!m_influences.classAt(classIndex).furtherNormals)
        m_lastTouched += elements;
}

void RySkinDeformer::computeAll()
{
    const std::vector<Run> &runs = m_influences.all();
    for (const Run &run : runs)
        count(run.classIndex, run.count);
    forParts(runs.size(), [&](size_t i) { computeRun(runs[i]); });
    m_changes.markAll(int(std::max(m_positions.size(), m_normals.size())));
}

void RySkinDeformer::computeMovedBy(const std::vector<char> &channels, const std::vector<RyPointChanges::Range> &places)
{
    const RySkinInfluences::Part part =
        places.empty() ? m_influences.movedBy(channels) : m_influences.movedBy(channels, places);
    const std::vector<int> unmoved = places.empty() ? std::vector<int>() : m_influences.unmovedIn(places);
    if (part.runs.empty() && part.picks.empty() && unmoved.empty())
        return;
    m_changes.begin();
    copyRest(unmoved);
    for (const int place : unmoved)
        m_changes.mark(place, 1);
    for (const Run &run : part.runs) {
        const Class &its = m_influences.classAt(run.classIndex);
        count(run.classIndex, run.count);
        if (its.places.empty()) {
            m_changes.mark(its.firstPlace + run.first, run.count);
        } else {
            for (int i = 0; i < run.count; ++i)
                m_changes.mark(its.placeOf(run.first + i), 1);
        }
    }
    for (const Picks &picks : part.picks) {
        const Class &its = m_influences.classAt(picks.classIndex);
        count(picks.classIndex, picks.count);
        for (int i = 0; i < picks.count; ++i)
            m_changes.mark(its.placeOf(part.picked[picks.first + size_t(i)]), 1);
    }
    const size_t parts = part.runs.size() + part.picks.size();
    forParts(parts, [&](size_t i) {
        if (i < part.runs.size())
            computeRun(part.runs[i]);
        else
            computePicks(part.picks[i - part.runs.size()], part.picked);
    });
}

template<class Compute>
void RySkinDeformer::forParts(size_t count, Compute compute) const
{
    const auto computeRange = [&](size_t begin, size_t end) {
        for (size_t i = begin; i < end; ++i)
            compute(i);
    };
    if (m_lastTouched > ThreadedAbove)
        RyParallel::forRanges(count, RunsOfTask, computeRange);
    else
        computeRange(0, count);
}

Task RySkinDeformer::taskFor(int classIndex)
{
    const Class &its = m_influences.classAt(classIndex);
    Task task{};
    task.influences = its.influences;
    task.restPositions = m_restPositions;
    task.restNormals = m_restNormals;
    task.positions = m_positions.data();
    task.normals = m_normals.data();
    task.output = its.furtherNormals ? Output::Normals : m_restNormals ? Output::Both : Output::Positions;
    return task;
}

void RySkinDeformer::computeRun(const Run &run)
{
    const Class &its = m_influences.classAt(run.classIndex);
    Task task = taskFor(run.classIndex);
    const size_t entry = size_t(run.first) * size_t(its.influences);
    task.offsets = its.offsets.empty() ? nullptr : its.offsets.data() + entry;
    task.wideOffsets = its.wideOffsets.empty() ? nullptr : its.wideOffsets.data() + entry;
    task.weights = its.weights.data() + entry;
    task.count = run.count;
    task.firstPlace = its.placeOf(run.first);
    const bool listed = its.placeOf(run.first + run.count - 1) - task.firstPlace >= run.count;
    task.places = listed ? its.places.data() + run.first : nullptr;
    const auto isOwn = [&] {
        const auto first = m_ownNormalBlocks.begin() + m_influences.blockOf(run.classIndex, run.first);
        const auto last = m_ownNormalBlocks.begin() + m_influences.blockOf(run.classIndex, run.first + run.count - 1);
        return std::find(first, last + 1, 1) != last + 1;
    };
    blend(task, !m_ownNormalBlocks.empty() && isOwn());
}

void RySkinDeformer::computePicks(const Picks &picks, const std::vector<int> &picked)
{
    // Brought together in small pieces, so that the loop finds them in a row.
    constexpr int PieceSize = 64;
    const Class &its = m_influences.classAt(picks.classIndex);
    const auto width = size_t(its.influences);
    std::vector<quint16> offsets;
    std::vector<quint32> wideOffsets;
    std::vector<float> weights;
    int places[PieceSize];
    Task task = taskFor(picks.classIndex);
    for (int done = 0; done < picks.count; done += PieceSize) {
        task.count = std::min(PieceSize, picks.count - done);
        offsets.clear();
        wideOffsets.clear();
        weights.clear();
        bool own = false;
        for (int i = 0; i < task.count; ++i) {
            const int element = picked[picks.first + size_t(done + i)];
            const auto entry = std::ptrdiff_t(size_t(element) * width);
            const auto end = entry + std::ptrdiff_t(width);
            if (its.offsets.empty())
                wideOffsets.insert(wideOffsets.end(), its.wideOffsets.begin() + entry, its.wideOffsets.begin() + end);
            else
                offsets.insert(offsets.end(), its.offsets.begin() + entry, its.offsets.begin() + end);
            weights.insert(weights.end(), its.weights.begin() + entry, its.weights.begin() + end);
            places[i] = its.placeOf(element);
            own = own || (!m_ownNormalBlocks.empty() &&
                          m_ownNormalBlocks[size_t(m_influences.blockOf(picks.classIndex, element))]);
        }
        task.offsets = offsets.empty() ? nullptr : offsets.data();
        task.wideOffsets = wideOffsets.empty() ? nullptr : wideOffsets.data();
        task.weights = weights.data();
        task.places = places;
        blend(task, own);
    }
}

void RySkinDeformer::blend(Task task, bool ownNormalMaps) const
{
    const Output wanted = task.output;
    const auto run = [&](Output output, const std::vector<Delta> &deltas) {
        task.output = output;
        task.deltas = deltas.data();
        if (m_path != Path::Plain && RySkinKernels::hasAvx2())
            RySkinKernels::blendAvx2(task);
        else
            RySkinKernels::blendPlain(task);
    };
    if (wanted == Output::Normals) {
        if (task.restNormals)
            run(Output::Normals, m_normalDeltas);
    } else if (wanted == Output::Both && ownNormalMaps) {
        run(Output::Positions, m_deltas);
        run(Output::Normals, m_normalDeltas);
    } else {
        run(wanted, m_deltas);
    }
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
