#include "rycore/skin/RyNearestBoneWeights.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/mesh/RyWeightQuantizer.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace {

constexpr int MaxSteps = 80;
constexpr float LeastShare = 0.004f;
constexpr size_t MaxInfluences = 4;

/// To the segment, which begins so much before its start.
float distanceTo(const RyNearestBoneWeights::Segment &segment, const RyVec3 &point, float before)
{
    const RyVec3 direction = (segment.end - segment.start).normalized();
    const float length = (segment.end - segment.start).length();
    const float place = std::clamp((point - segment.start).dot(direction), -before, length);
    return (point - (segment.start + direction * place)).length();
}

/// The direction in which a joint is passed; zero where that cannot be said.
RyVec3 passage(const std::vector<RyNearestBoneWeights::Segment> &segments, size_t index)
{
    const RyNearestBoneWeights::Segment &segment = segments[index];
    if (segment.parent < 0)
        return {};
    const RyNearestBoneWeights::Segment &parent = segments[size_t(segment.parent)];
    const RyVec3 own = (segment.end - segment.start).normalized();
    const RyVec3 before = (parent.end - parent.start).normalized();
    return own.dot(before) > -0.5f ? (own + before).normalized() : own;
}

void add(RyNearestBoneWeights::Influences &shares, int segment, float share)
{
    const auto place =
        std::lower_bound(shares.begin(), shares.end(), segment,
                         [](const std::pair<int, float> &entry, int value) { return entry.first < value; });
    if (place != shares.end() && place->first == segment)
        place->second += share;
    else
        shares.insert(place, {segment, share});
}

} // namespace

RyNearestBoneWeights::RyNearestBoneWeights(const RyFacetMesh &mesh, const std::vector<Segment> &segments)
    : m_positions(mesh.getPositions())
{
    findNeighbours(mesh);
    assign(segments);
    spread();
}

void RyNearestBoneWeights::findNeighbours(const RyFacetMesh &mesh)
{
    m_neighbours.resize(m_positions.size());
    for (const RyFacet &facet : mesh.getFacets()) {
        for (int corner = 0; corner < facet.count(); ++corner) {
            const int a = facet.vertices[corner];
            const int b = facet.vertices[(corner + 1) % facet.count()];
            m_neighbours[size_t(a)].push_back(b);
            m_neighbours[size_t(b)].push_back(a);
        }
    }
    for (std::vector<int> &list : m_neighbours) {
        std::sort(list.begin(), list.end());
        list.erase(std::unique(list.begin(), list.end()), list.end());
    }
}

void RyNearestBoneWeights::assign(const std::vector<Segment> &segments)
{
    std::vector<RyVec3> passages;
    for (size_t i = 0; i < segments.size(); ++i)
        passages.push_back(passage(segments, i));
    m_shares.resize(m_positions.size());
    m_steps.resize(m_positions.size());
    for (size_t v = 0; v < m_positions.size(); ++v) {
        const RyVec3 &point = m_positions[v];
        float edge = 0.0f;
        for (int other : m_neighbours[v])
            edge += (m_positions[size_t(other)] - point).length() / float(m_neighbours[v].size());
        // Within half an edge before a joint a vertex is as good as at it, and the child is preferred to its parent.
        size_t nearest = 0;
        float least = std::numeric_limits<float>::max();
        for (size_t i = 0; i < segments.size(); ++i) {
            if ((point - segments[i].start).dot(passages[i]) < -0.5f * edge)
                continue;
            const float distance = distanceTo(segments[i], point, 0.5f * edge);
            if (distance <= least * 1.0001f) {
                least = distance;
                nearest = i;
            }
        }
        m_shares[v] = {{int(nearest), 1.0f}};
        if (!(edge > 0.0f))
            continue;
        const Segment &segment = segments[nearest];
        const float passed = std::max(0.5f + (point - segment.start).dot(passages[nearest]) / edge, 0.0f);
        if (segment.parent >= 0 && passed < 1.0f)
            m_shares[v] = {{segment.parent, 1.0f - passed}, {int(nearest), passed}};
        // A step spreads by half the length of an edge; steps add up by their squares.
        m_steps[v] = int(std::clamp(std::ceil(least * least / (edge * edge)), 1.0f, float(MaxSteps)));
    }
}

void RyNearestBoneWeights::spread()
{
    const int last = m_steps.empty() ? 0 : *std::max_element(m_steps.begin(), m_steps.end());
    for (int step = 0; step < last; ++step) {
        std::vector<Influences> following = m_shares;
        for (size_t v = 0; v < m_shares.size(); ++v) {
            if (m_steps[v] <= step || m_neighbours[v].empty())
                continue;
            Influences mixed = m_shares[v];
            for (auto &[segment, share] : mixed)
                share *= 0.5f;
            for (int other : m_neighbours[v]) {
                for (const auto &[segment, share] : m_shares[size_t(other)])
                    add(mixed, segment, 0.5f * share / float(m_neighbours[v].size()));
            }
            std::erase_if(mixed, [](const auto &entry) { return entry.second < 1e-5f; });
            following[v] = std::move(mixed);
        }
        m_shares.swap(following);
    }
}

std::vector<std::vector<std::pair<int, quint16>>> RyNearestBoneWeights::weights() const
{
    std::vector<std::vector<std::pair<int, quint16>>> result(m_shares.size());
    for (size_t v = 0; v < m_shares.size(); ++v) {
        Influences kept = m_shares[v];
        std::stable_sort(kept.begin(), kept.end(), [](const auto &a, const auto &b) { return a.second > b.second; });
        kept.resize(std::min(kept.size(), MaxInfluences));
        std::erase_if(kept, [&](const auto &entry) { return &entry != &kept.front() && entry.second < LeastShare; });
        const float sum = std::accumulate(kept.begin(), kept.end(), 0.0f,
                                          [](float total, const auto &entry) { return total + entry.second; });
        RyWeightQuantizer::LargestTakesRest<float> quantizer(sum);
        for (size_t i = 0; i < kept.size(); ++i)
            quantizer.add(i, kept[i].second);
        for (size_t i = 0; i < kept.size(); ++i)
            result[v].emplace_back(kept[i].first, quantizer.quantized(i, kept[i].second));
        std::sort(result[v].begin(), result[v].end());
    }
    return result;
}
