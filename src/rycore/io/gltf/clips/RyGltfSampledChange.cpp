#include "rycore/io/gltf/clips/RyGltfSampledChange.h"

#include <algorithm>
#include <cmath>
#include <optional>

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
        Eigen::Affine3d result = Eigen::Affine3d::Identity();
        for (const RyGltfMotionPiece &motion : m_down)
            result = motion.map(time) * result;
        return m_change.after * up.inverse() * m_change.between * result;
    }
    Eigen::Affine3d whole(double time) const { return behind(time) * m_node.map(time) * m_change.before; }
    RyGltfParts parts(double time) const
    {
        const Eigen::Affine3d map = whole(time);
        return map.matrix().allFinite() ? RyGltfParts::nearest(map, m_node.scale(time)) : m_node.parts(time);
    }

private:
    const RyGltfMotionChange &m_change;
    RyGltfMotionPiece m_node;
    std::vector<RyGltfMotionPiece> m_down, m_up;
};

namespace {

RyGltfParts between(const RyGltfParts &a, const RyGltfParts &b, double share)
{
    return {a.translation + share * (b.translation - a.translation), a.rotation.slerp(share, b.rotation),
            a.scale + share * (b.scale - a.scale)};
}

struct Key
{
    float time;
    RyGltfParts parts;
};

std::vector<Key> thinned(const std::vector<Key> &keys, double tolerance, double reach)
{
    std::vector<Eigen::Affine3d> maps;
    for (const Key &key : keys)
        maps.push_back(key.parts.map());
    const auto isNear = [&](size_t from, size_t to, size_t place) {
        const double start = double(keys[from].time);
        const double share = (double(keys[place].time) - start) / (double(keys[to].time) - start);
        return ryGltfDistance(between(keys[from].parts, keys[to].parts, share).map(), maps[place], reach) <=
               RyGltfKeyTimes::ThinningShare * tolerance;
    };
    std::vector<Key> result;
    for (const size_t key : RyGltfKeyTimes::thin(keys.size(), isNear))
        result.push_back(keys[key]);
    return result;
}

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
    const double reach = m_change.reach;
    std::vector<Key> taken;
    const std::vector<RyGltfKeyTimes::Span> spans = keys.spans();
    size_t room = RyGltfKeyTimes::roomFor(spans.size());
    for (const RyGltfKeyTimes::Span &span : spans) {
        const Piece piece(*this, span.from, span.next);
        const auto excess = [&](float from, float to) {
            const RyGltfParts a = piece.parts(double(from)), b = piece.parts(double(to));
            double worst = 0.0;
            for (const double share : {0.25, 0.5, 0.75}) {
                const RyGltfParts wanted = piece.parts(double(from) + share * (double(to) - double(from)));
                worst = std::max(worst, ryGltfDistance(wanted.map(), between(a, b, share).map(), reach));
            }
            return worst / (RyGltfKeyTimes::TakingShare * m_change.tolerance);
        };
        std::vector<float> times{span.from};
        if (kind != RyGltfCurve::Step && span.to > span.from)
            RyGltfKeyTimes::refine(span.from, span.to, excess, times, room);
        if (span.endsInStep)
            times.push_back(span.to);
        for (const float time : times) {
            const RyGltfParts parts = piece.parts(double(time));
            *missed = std::max(*missed, ryGltfDistance(parts.map(), piece.whole(double(time)), reach));
            taken.push_back({time, parts});
        }
    }
    Curves curves(kind);
    if (kind == RyGltfCurve::Linear)
        taken = thinned(taken, m_change.tolerance, reach);
    for (const Key &key : taken)
        curves.add(key.time, key.parts);
    return curves.motion(m_motion);
}
