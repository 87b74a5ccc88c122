#include "rycore/io/gltf/clips/RyGltfExactChange.h"

#include "rycore/io/gltf/clips/RyGltfArc.h"
#include "rycore/io/gltf/clips/RyGltfCurveFit.h"
#include "rycore/io/gltf/clips/RyGltfScaleSpread.h"

#include <algorithm>
#include <cmath>

namespace {

/// A rotation times one factor, of either sign; false where it holds more, by so much.
bool splitSimilarity(const Eigen::Matrix3d &linear, double slack, Eigen::Quaterniond &rotation, double &factor)
{
    factor = std::cbrt(linear.determinant());
    if (!(std::abs(factor) > 0.0) || !std::isfinite(factor))
        return false;
    if (linear.isIdentity(0.0)) {
        rotation = Eigen::Quaterniond::Identity();
        return true;
    }
    rotation = Eigen::Quaterniond(Eigen::Matrix3d(linear / factor)).normalized();
    return (linear / factor - rotation.toRotationMatrix()).norm() <= slack;
}

} // namespace

std::optional<RyGltfExactChange> RyGltfExactChange::find(const RyGltfMotion &motion, const Eigen::Affine3d &before,
                                                         const Eigen::Affine3d &after, double tolerance, double slack)
{
    RyGltfExactChange change;
    double factorBefore = 1.0, factorAfter = 1.0;
    Eigen::Quaterniond turn;
    if (!splitSimilarity(before.linear(), slack, turn, factorBefore) ||
        !splitSimilarity(after.linear(), slack, change.m_parentTurn, factorAfter) ||
        !change.findTurn(motion, turn.toRotationMatrix(), slack)) {
        return std::nullopt;
    }
    change.m_shift = before.translation();
    change.m_after = after;
    change.m_factorAfter = std::abs(factorAfter);
    change.m_factor = factorBefore * factorAfter;
    if (std::abs(change.m_factor - 1.0) < 1e-7)
        change.m_factor = 1.0;
    change.m_tolerance = tolerance;
    return change;
}

/// Brings a turn to the other side of the scale.
bool RyGltfExactChange::findTurn(const RyGltfMotion &motion, const Eigen::Matrix3d &turn, double slack)
{
    m_turn = Eigen::Quaterniond(turn);
    if (turn.isIdentity(0.0))
        return true;
    RyGltfScaleSpread spread;
    if (const RyGltfCurve *curve = motion.curve(RyGltfPath::Scale))
        spread.add(*curve);
    else
        spread.add(motion.rest.scale);
    if (spread.largest() <= slack) {
        const Eigen::Matrix3d signs = spread.signs().asDiagonal();
        m_turn = Eigen::Quaterniond(Eigen::Matrix3d(signs * turn * signs));
        return true;
    }
    if (!ryGltfIsQuarterTurn(turn))
        return false;
    m_permutation = turn.array().round().abs().matrix().transpose();
    return true;
}

RyGltfMotion RyGltfExactChange::apply(const RyGltfMotion &motion) const
{
    RyGltfMotion result;
    result.curves[size_t(RyGltfPath::Translation)] = translations(motion);
    result.curves[size_t(RyGltfPath::Rotation)] = rotations(motion);
    result.curves[size_t(RyGltfPath::Scale)] = scales(motion.curves[size_t(RyGltfPath::Scale)]);
    const RyGltfParts &rest = motion.rest;
    result.rest.rotation = m_parentTurn * rest.rotation * m_turn;
    result.rest.scale = m_factor * (m_permutation * rest.scale);
    // Where nothing drives the translation, all that it follows from stands still.
    const RyGltfMotionPiece piece(motion, 0.0f, 0.0f);
    result.rest.translation = place(piece, 0.0);
    return result;
}

/// Half a turn between two keys may go either way, as numbers are rounded: a key between them says which.
RyGltfExactChange::Curve RyGltfExactChange::withoutHalfTurns(const Curve &curve)
{
    if (curve->kind != RyGltfCurve::Linear)
        return curve;
    auto result = std::make_shared<RyGltfCurve>(*curve);
    result->times.clear();
    result->values.clear();
    for (size_t i = 0; i < curve->keyCount(); ++i) {
        const Eigen::Map<const Eigen::Vector4d> now(curve->key(i));
        const Eigen::Map<const Eigen::Vector4d> last(curve->key(i > 0 ? i - 1 : 0));
        const float from = curve->times[i > 0 ? i - 1 : 0], to = curve->times[i];
        const float middle = float(0.5 * (double(from) + double(to)));
        if (std::abs(now.dot(last)) < 1e-3 * now.norm() * last.norm() && middle > from && middle < to) {
            const Eigen::Quaterniond between = RyGltfCurvePiece(*curve, from, to).rotation(double(middle));
            result->times.push_back(middle);
            result->values.insert(result->values.end(), between.coeffs().data(), between.coeffs().data() + 4);
        }
        result->times.push_back(to);
        result->values.insert(result->values.end(), now.data(), now.data() + 4);
    }
    return result->keyCount() == curve->keyCount() ? curve : result;
}

RyGltfExactChange::Curve RyGltfExactChange::rotations(const RyGltfMotion &motion) const
{
    const Curve &curve = motion.curves[size_t(RyGltfPath::Rotation)];
    const auto isIdentity = [](const Eigen::Quaterniond &q) {
        return q.coeffs() == Eigen::Quaterniond::Identity().coeffs();
    };
    const bool isTurned = !isIdentity(m_turn) || !isIdentity(m_parentTurn);
    if (!curve || (!isTurned && !isArc(motion)))
        return curve;
    const Curve definite = withoutHalfTurns(curve);
    if (!isTurned)
        return definite;
    auto result = std::make_shared<RyGltfCurve>(*definite);
    for (size_t i = 0; i + 4 <= result->values.size(); i += 4) {
        Eigen::Map<Eigen::Vector4d> numbers(result->values.data() + i);
        numbers = (m_parentTurn * Eigen::Quaterniond(numbers) * m_turn).coeffs();
    }
    return result;
}

RyGltfExactChange::Curve RyGltfExactChange::scales(const Curve &curve) const
{
    if (!curve || (m_factor == 1.0 && m_permutation.isIdentity(0.0)))
        return curve;
    auto result = std::make_shared<RyGltfCurve>(*curve);
    for (size_t i = 0; i + 3 <= result->values.size(); i += 3) {
        Eigen::Map<Eigen::Vector3d> numbers(result->values.data() + i);
        numbers = (m_factor * (m_permutation * numbers)).eval();
    }
    return result;
}

/// Where the node's new origin is within its parent.
Eigen::Vector3d RyGltfExactChange::place(const RyGltfMotionPiece &piece, double time) const
{
    return m_after * (piece.translation(time) + piece.rotation(time) * piece.scale(time).cwiseProduct(m_shift));
}

/// Whether the new origin runs about the old one, so that keys of the translation alone do not say where it is.
bool RyGltfExactChange::isArc(const RyGltfMotion &motion) const
{
    const auto varies = [&motion](RyGltfPath path) { return motion.curve(path) && !motion.curve(path)->isConstant(); };
    return !m_shift.isZero(0.0) && (varies(RyGltfPath::Rotation) || varies(RyGltfPath::Scale));
}

RyGltfExactChange::Curve RyGltfExactChange::translations(const RyGltfMotion &motion) const
{
    const Curve &curve = motion.curves[size_t(RyGltfPath::Translation)];
    if (isArc(motion))
        return fitted(motion);
    if (!curve)
        return nullptr;
    const RyGltfMotionPiece piece(motion, 0.0f, 0.0f);
    const Eigen::Vector3d shift =
        m_shift.isZero(0.0) ? m_shift : piece.rotation(0.0) * piece.scale(0.0).cwiseProduct(m_shift);
    if (shift.isZero(0.0) && m_after.matrix().isIdentity(0.0))
        return curve;
    auto result = std::make_shared<RyGltfCurve>(*curve);
    for (size_t i = 0; i + 3 <= result->values.size(); i += 3) {
        Eigen::Map<Eigen::Vector3d> numbers(result->values.data() + i);
        const bool isTangent = curve->kind == RyGltfCurve::Cubic && i / 3 % 3 != 1;
        numbers =
            isTangent ? Eigen::Vector3d(m_after.linear() * numbers) : Eigen::Vector3d(m_after * (numbers + shift));
    }
    return result;
}

RyGltfExactChange::Curve RyGltfExactChange::fitted(const RyGltfMotion &motion) const
{
    RyGltfKeyTimes keys;
    keys.add(motion);
    const RyGltfCurve *before = motion.curve(RyGltfPath::Translation);
    const bool wasCubic = before && before->kind == RyGltfCurve::Cubic;
    const RyGltfCurve::Kind kind = keys.isStepped() ? RyGltfCurve::Step
                                   : wasCubic       ? RyGltfCurve::Cubic
                                                    : RyGltfCurve::Linear;
    const std::vector<RyGltfKeyTimes::Span> spans = keys.spans();
    RyGltfCurveFit fit(kind, m_tolerance, spans.size());
    RyGltfMotionPiece::Keys near{};
    for (const RyGltfKeyTimes::Span &span : spans) {
        const RyGltfMotionPiece piece(motion, span.from, span.next, near);
        near = piece.keys();
        const auto arc = kind == RyGltfCurve::Linear ? RyGltfArc::find(piece, m_shift, m_factorAfter) : std::nullopt;
        fit.add(
            span, [this, &piece](double time) { return place(piece, time); }, arc ? &*arc : nullptr);
    }
    return fit.take();
}
