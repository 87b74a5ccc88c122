#include "rycore/io/gltf/clips/RyGltfSampledChange.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>

/// Of what may be off: for shear that is not looked at further. The rest is for the lines between keys.
static constexpr double shearShare = 1.0 / 16.0;

/// All motions that enter, between two times.
class RyGltfSampledChange::Piece
{
public:
    Piece(const RyGltfSampledChange &whole, float from, float to)
        : m_change(whole.m_change), m_node(whole.m_motion, from, to)
    {
        for (const RyGltfMotion &motion : m_change.down)
            m_down.emplace_back(motion, from, to);
        for (const RyGltfMotion &motion : m_change.up)
            m_up.emplace_back(motion, from, to);
    }

    Eigen::Affine3d behind(double time) const
    {
        Eigen::Affine3d up = Eigen::Affine3d::Identity();
        for (const RyGltfMotionPiece &motion : m_up)
            up = motion.map(time) * up;
        Eigen::Affine3d result = m_change.between;
        for (auto motion = m_down.rbegin(); motion != m_down.rend(); ++motion)
            result = result * motion->map(time);
        return m_change.after * (m_up.empty() ? result : up.inverse() * result);
    }

    /// What a curve can say of a time, and how far that is off.
    struct Sample
    {
        RyGltfParts parts;
        Eigen::Affine3d map; // of the parts
        double missed;
    };
    void know(double time, const Sample &sample) { m_samples.emplace(time, sample); }
    const Sample &at(double time)
    {
        const auto [known, isNew] = m_samples.try_emplace(time);
        if (isNew)
            known->second = take(time);
        return known->second;
    }

    /// How far the line between two times is off.
    double missOf(float from, float to)
    {
        const RyGltfParts &a = at(double(from)).parts, &b = at(double(to)).parts;
        double worst = 0.0;
        for (const double share : {0.25, 0.5, 0.75}) {
            const RyGltfParts line = ryGltfBetween(a, b, share);
            const Sample &wanted = at(double(from) + share * (double(to) - double(from)));
            worst = std::max(worst, ryGltfDistance(wanted.map, line.map(), m_change.reach));
        }
        return worst;
    }

private:
    Sample take(double time) const
    {
        const Eigen::Affine3d map = behind(time) * m_node.map(time) * m_change.before;
        const auto said = [&](const RyGltfParts &parts) {
            const Eigen::Affine3d now = parts.map();
            return Sample{parts, now, ryGltfDistance(now, map, m_change.reach)};
        };
        if (!map.matrix().allFinite())
            return said(m_node.parts(time));
        const Eigen::Vector3d signs = m_node.scale(time);
        const Sample straight = said(RyGltfParts::straight(map, signs));
        return straight.missed <= shearShare * m_change.tolerance ? straight : said(RyGltfParts::nearest(map, signs));
    }

    const RyGltfMotionChange &m_change;
    RyGltfMotionPiece m_node;
    std::vector<RyGltfMotionPiece> m_down, m_up;
    std::map<double, Sample> m_samples; // by time
};

namespace {

/// The three curves of a list of transforms.
class Curves
{
public:
    explicit Curves(RyGltfCurve::Kind kind)
    {
        for (auto &curve : m_curves) {
            curve = std::make_shared<RyGltfCurve>();
            curve->kind = kind;
        }
        m_curves[size_t(RyGltfPath::Rotation)]->components = 4;
    }

    void add(float time, RyGltfParts parts)
    {
        if (m_last && m_last->dot(parts.rotation) < 0.0)
            parts.rotation.coeffs() = -parts.rotation.coeffs();
        m_last = parts.rotation;
        const double *numbers[3] = {parts.translation.data(), parts.rotation.coeffs().data(), parts.scale.data()};
        for (size_t i = 0; i < 3; ++i) {
            RyGltfCurve &curve = *m_curves[i];
            curve.times.push_back(time);
            curve.values.insert(curve.values.end(), numbers[i], numbers[i] + curve.components);
        }
    }

    /// What stands still and was not driven stays so.
    RyGltfMotion motion(const RyGltfMotion &before) const
    {
        RyGltfMotion result;
        const RyGltfCurve &scale = *m_curves[size_t(RyGltfPath::Scale)];
        for (size_t i = 0; i < 3; ++i) {
            if (before.curves[i] || !isFlat(*m_curves[i]))
                result.curves[i] = m_curves[i];
        }
        result.rest.translation = Eigen::Map<const Eigen::Vector3d>(m_curves[0]->key(0));
        result.rest.rotation = Eigen::Quaterniond(Eigen::Map<const Eigen::Vector4d>(m_curves[1]->key(0)));
        result.rest.scale = Eigen::Map<const Eigen::Vector3d>(scale.key(0));
        return result;
    }

private:
    static bool isFlat(const RyGltfCurve &curve)
    {
        for (size_t i = 0; i < curve.values.size(); ++i) {
            const double first = curve.values[i % size_t(curve.components)];
            if (std::abs(curve.values[i] - first) > 1e-7 * std::max(1.0, std::abs(first)))
                return false;
        }
        return true;
    }

    std::array<std::shared_ptr<RyGltfCurve>, 3> m_curves;
    std::optional<Eigen::Quaterniond> m_last;
};

} // namespace

Eigen::Affine3d RyGltfSampledChange::behind(float from, float to, double time) const
{
    return Piece(*this, from, to).behind(time);
}

RyGltfMotion RyGltfSampledChange::apply(double *missed) const
{
    RyGltfKeyTimes keys;
    keys.add(m_motion);
    for (const auto *list : {&m_change.down, &m_change.up}) {
        for (const RyGltfMotion &motion : *list)
            keys.add(motion);
    }
    const RyGltfCurve::Kind kind = keys.isStepped() ? RyGltfCurve::Step : RyGltfCurve::Linear;
    std::vector<RyGltfKeyTimes::Stop> stops;
    std::vector<Piece::Sample> samples;                    // at the stops
    std::optional<std::pair<float, Piece::Sample>> before; // at the end of the span before
    const double tolerance = (1.0 - shearShare) * m_change.tolerance;
    const std::vector<RyGltfKeyTimes::Span> spans = keys.spans();
    size_t room = RyGltfKeyTimes::roomFor(spans.size());
    for (const RyGltfKeyTimes::Span &span : spans) {
        Piece piece(*this, span.from, span.next);
        if (before && before->first == span.from)
            piece.know(double(span.from), before->second);
        before.reset();
        const auto miss = [&](float from, float to) { return piece.missOf(from, to) / tolerance; };
        if (kind == RyGltfCurve::Step || !(span.to > span.from)) {
            stops.push_back({span.from, 0.0});
        } else {
            RyGltfKeyTimes::refine(span.from, span.to, miss, stops, room);
            before.emplace(span.to, piece.at(double(span.to)));
        }
        if (span.endsInStep)
            stops.push_back({span.to, 0.0});
        while (samples.size() < stops.size()) {
            samples.push_back(piece.at(double(stops[samples.size()].time)));
            *missed = std::max(*missed, samples.back().missed);
        }
    }
    const auto distance = [&](size_t from, size_t to, size_t place) {
        const double start = double(stops[from].time);
        const double share = (double(stops[place].time) - start) / (double(stops[to].time) - start);
        const RyGltfParts line = ryGltfBetween(samples[from].parts, samples[to].parts, share);
        return ryGltfDistance(line.map(), samples[place].map, m_change.reach) / tolerance;
    };
    Curves curves(kind);
    if (kind == RyGltfCurve::Linear) {
        for (const size_t key : RyGltfKeyTimes::thin(stops, distance))
            curves.add(stops[key].time, samples[key].parts);
    } else {
        for (size_t key = 0; key < stops.size(); ++key)
            curves.add(stops[key].time, samples[key].parts);
    }
    return curves.motion(m_motion);
}
