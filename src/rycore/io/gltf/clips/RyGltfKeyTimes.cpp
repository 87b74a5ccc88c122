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

/// `before`: how far the line was that this is a piece of.
void refinePiece(float from, float to, double before, const RyGltfKeyTimes::Excess &excess, std::vector<float> &times,
                 size_t mostKeys)
{
    constexpr int mostPieces = 64;
    const double much = excess(from, to);
    if (!(much > 1.0) || !(much < 0.9 * before) || times.size() > mostKeys)
        return;
    // What is left of an arc's height falls with the square of the number of pieces.
    const int pieces = int(std::clamp(std::ceil(std::sqrt(much)), 2.0, double(mostPieces)));
    float start = from;
    for (int i = 1; i <= pieces; ++i) {
        const float next = i == pieces ? to : float(double(from) + (double(to) - double(from)) * i / pieces);
        if (!(next > start) || (i < pieces && !(next < to)))
            continue;
        refinePiece(start, next, much, excess, times, mostKeys);
        if (i < pieces)
            times.push_back(next);
        start = next;
    }
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

void RyGltfKeyTimes::refine(float from, float to, const Excess &excess, std::vector<float> &times, size_t &room)
{
    constexpr size_t mostAtOnce = 4096;
    const size_t before = times.size();
    if (room > 0)
        refinePiece(from, to, std::numeric_limits<double>::infinity(), excess, times, std::min(room, mostAtOnce));
    room -= std::min(room, times.size() - before);
}

std::vector<size_t> RyGltfKeyTimes::thin(size_t count, const IsNear &isNear)
{
    constexpr size_t mostAtOnce = 64; // so that long curves cost no more than their length
    std::vector<size_t> kept;
    for (size_t from = 0; from < count;) {
        kept.push_back(from);
        size_t to = from + 1;
        const auto fits = [&](size_t end) {
            for (size_t place = from + 1; place < end; ++place) {
                if (!isNear(from, end, place))
                    return false;
            }
            return true;
        };
        while (to + 1 < count && to - from < mostAtOnce && fits(to + 1))
            ++to;
        from = to;
    }
    return kept;
}
