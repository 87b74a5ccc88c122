#include "rycore/io/gltf/clips/RyGltfCurveFit.h"

#include "rycore/io/gltf/clips/RyGltfArc.h"

#include <algorithm>

namespace {

/// How fast a place moves at one end of a stretch on which it is smooth.
Eigen::Vector3d velocity(const RyGltfCurveFit::Place &place, float from, float to, bool atEnd)
{
    if (!(to > from))
        return Eigen::Vector3d::Zero();
    const double step = (atEnd ? -1e-3 : 1e-3) * (double(to) - double(from));
    const double at = double(atEnd ? to : from);
    // The one-sided difference of fourth order.
    return (-25.0 * place(at) + 48.0 * place(at + step) - 36.0 * place(at + 2 * step) + 16.0 * place(at + 3 * step) -
            3.0 * place(at + 4 * step)) /
           (12.0 * step);
}

} // namespace

RyGltfCurveFit::RyGltfCurveFit(RyGltfCurve::Kind kind, double tolerance, size_t spans)
    : m_tolerance(tolerance), m_room(RyGltfKeyTimes::roomFor(spans))
{
    m_curve->kind = kind;
    m_stops.reserve(2 * spans);
    m_curve->values.reserve(2 * spans * size_t(m_curve->numbersPerKey()));
}

void RyGltfCurveFit::append(const Eigen::Vector3d &numbers)
{
    m_curve->values.resize(m_curve->values.size() + 3);
    std::copy_n(numbers.data(), 3, m_curve->values.end() - 3);
}

void RyGltfCurveFit::findStops(const RyGltfKeyTimes::Span &span, const Place &place, const RyGltfArc *arc)
{
    if (m_curve->kind == RyGltfCurve::Step || !(span.to > span.from)) {
        m_stops.push_back({span.from, 0.0});
    } else if (arc) {
        const double miss = arc->rise(double(span.to) - double(span.from)) / m_tolerance;
        RyGltfKeyTimes::divide(span.from, span.to, miss, m_stops, m_room);
    } else {
        const auto miss = [&](float from, float to) { return missOf(place, from, to) / m_tolerance; };
        RyGltfKeyTimes::refine(span.from, span.to, miss, m_stops, m_room);
    }
    if (span.endsInStep)
        m_stops.push_back({span.to, 0.0});
}

void RyGltfCurveFit::add(const RyGltfKeyTimes::Span &span, const Place &place, const RyGltfArc *arc)
{
    size_t key = m_stops.size();
    for (findStops(span, place, arc); key < m_stops.size(); ++key) {
        const float time = m_stops[key].time;
        const float next = key + 1 < m_stops.size() ? m_stops[key + 1].time : span.to;
        if (m_curve->kind == RyGltfCurve::Cubic)
            append(m_arriving);
        append(place(double(time)));
        if (m_curve->kind == RyGltfCurve::Cubic) {
            append(velocity(place, time, next, false));
            m_arriving = velocity(place, time, next, true);
        }
    }
}

/// How far the curve is off between two keys, as far as some places tell.
double RyGltfCurveFit::missOf(const Place &place, float from, float to) const
{
    Stretch stretch{double(to) - double(from), place(double(from)), place(double(to)), {}, {}};
    if (m_curve->kind == RyGltfCurve::Cubic) {
        stretch.leaving = velocity(place, from, to, false);
        stretch.arriving = velocity(place, from, to, true);
    }
    double worst = 0.0;
    for (const double share : {0.25, 0.5, 0.75}) {
        const double time = double(from) + share * (double(to) - double(from));
        worst = std::max(worst, (place(time) - between(stretch, share)).norm());
    }
    return worst;
}

std::shared_ptr<const RyGltfCurve> RyGltfCurveFit::take()
{
    m_curve->times.reserve(m_stops.size());
    for (const RyGltfKeyTimes::Stop &stop : m_stops)
        m_curve->times.push_back(stop.time);
    if (m_curve->kind == RyGltfCurve::Linear)
        thin();
    return std::move(m_curve);
}

void RyGltfCurveFit::thin()
{
    const auto at = [this](size_t key) { return Eigen::Map<const Eigen::Vector3d>(m_curve->key(key)); };
    const auto distance = [&](size_t from, size_t to, size_t place) {
        const double start = double(m_curve->times[from]);
        const double share = (double(m_curve->times[place]) - start) / (double(m_curve->times[to]) - start);
        return (at(from) + share * (at(to) - at(from)) - at(place)).norm() / m_tolerance;
    };
    size_t count = 0;
    for (const size_t key : RyGltfKeyTimes::thin(m_stops, distance)) {
        m_curve->times[count] = m_curve->times[key];
        std::copy_n(m_curve->key(key), 3, m_curve->values.begin() + long(3 * count));
        ++count;
    }
    m_curve->times.resize(count);
    m_curve->values.resize(3 * count);
}

Eigen::Vector3d RyGltfCurveFit::between(const Stretch &stretch, double share) const
{
    const auto &[span, a, b, leaving, arriving] = stretch;
    if (m_curve->kind != RyGltfCurve::Cubic)
        return a + share * (b - a);
    const double u = share, u2 = u * u, u3 = u2 * u;
    return (2 * u3 - 3 * u2 + 1) * a + span * (u3 - 2 * u2 + u) * leaving + (3 * u2 - 2 * u3) * b +
           span * (u3 - u2) * arriving;
}
