#include "rycore/io/gltf/clips/RyGltfKeyTimes.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

void unite(std::vector<float> &times, const std::vector<float> &others)
{
    if (times == others)
        return;
    std::vector<float> result;
    result.reserve(times.size() + others.size());
    std::set_union(times.begin(), times.end(), others.begin(), others.end(), std::back_inserter(result));
    times = std::move(result);
}

constexpr size_t mostAtOnce = 4096;

/// Equal pieces, each given to `add`; fewer where floats know no more times.
template<typename Add>
void cut(float from, float to, size_t pieces, const Add &add)
{
    float start = from;
    for (size_t i = 1; i <= pieces; ++i) {
        const double share = double(i) / double(pieces);
        const float next = i == pieces ? to : float(double(from) + (double(to) - double(from)) * share);
        if (!(next > start) || (i < pieces && !(next < to)))
            continue;
        add(start, next);
        start = next;
    }
}

/// `before`: how far the line was off that this is a piece of.
void refinePiece(float from, float to, double before, const RyGltfKeyTimes::Miss &miss,
                 std::vector<RyGltfKeyTimes::Stop> &stops, size_t mostStops)
{
    constexpr double enough = 0.5, mostPieces = 64.0;
    const double much = miss(from, to);
    if (!(much > enough) || !(much < 0.9 * before) || stops.size() >= mostStops) {
        stops.push_back({from, much});
        return;
    }
    // What is left of an arc's height falls with the square of the number of pieces.
    const double pieces = std::clamp(std::ceil(std::sqrt(much / enough)), 2.0, mostPieces);
    cut(from, to, size_t(pieces),
        [&](float start, float next) { refinePiece(start, next, much, miss, stops, mostStops); });
}

} // namespace

void RyGltfKeyTimes::add(const RyGltfMotion &motion)
{
    for (const auto &curve : motion.curves) {
        if (curve)
            add(*curve);
    }
}

void RyGltfKeyTimes::add(const RyGltfCurve &curve)
{
    unite(m_times, curve.times);
    if (curve.isConstant())
        return;
    if (curve.kind == RyGltfCurve::Step)
        unite(m_steps, curve.times);
    else
        m_isStepped = false;
}

std::vector<RyGltfKeyTimes::Span> RyGltfKeyTimes::spans() const
{
    std::vector<Span> result;
    for (size_t i = 0; i < m_times.size(); ++i) {
        const float from = m_times[i];
        const float next = i + 1 < m_times.size() ? m_times[i + 1] : from;
        const bool isStep = !m_isStepped && std::binary_search(m_steps.begin(), m_steps.end(), next);
        const float to = isStep ? std::nextafter(next, from) : next;
        result.push_back({from, to, next, isStep && to > from});
    }
    return result;
}

void RyGltfKeyTimes::refine(float from, float to, const Miss &miss, std::vector<Stop> &stops, size_t &room)
{
    const size_t before = stops.size();
    refinePiece(from, to, std::numeric_limits<double>::infinity(), miss, stops, before + std::min(room, mostAtOnce));
    room -= std::min(room, stops.size() - before - 1);
}

void RyGltfKeyTimes::divide(float from, float to, double miss, std::vector<Stop> &stops, size_t &room)
{
    if (!(miss > 1.0)) {
        stops.push_back({from, miss});
        return;
    }
    const double most = 1.0 + double(std::min(room, mostAtOnce));
    const size_t pieces = size_t(std::min(std::ceil(std::sqrt(miss)), most));
    const size_t before = stops.size();
    cut(from, to, pieces, [&](float start, float) { stops.push_back({start, miss / double(pieces * pieces)}); });
    room -= std::min(room, stops.size() - before - 1);
}
