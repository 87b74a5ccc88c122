#include "rycore/io/gltf/clips/RyGltfCurve.h"

#include <algorithm>
#include <cmath>

bool RyGltfCurve::isConstant() const
{
    for (size_t i = 0; i < keyCount(); ++i) {
        if (!std::equal(key(0), key(0) + components, key(i)))
            return false;
        const double *tangents[2] = {key(i) - components, key(i) + components};
        for (const double *tangent : tangents) {
            if (kind == Cubic && keyCount() > 1 &&
                std::any_of(tangent, tangent + components, [](double number) { return number != 0.0; }))
                return false;
        }
    }
    return true;
}

namespace {

/// Of a key, with zeros for those it has not.
Eigen::Vector4d fourOf(const RyGltfCurve &curve, size_t index)
{
    const double *key = curve.key(index);
    if (curve.components < 3)
        return {key[0], 0.0, 0.0, 0.0};
    return {key[0], key[1], key[2], curve.components == 4 ? key[3] : 0.0};
}

/// Of length one; the identity where it has none.
Eigen::Vector4d unit(const Eigen::Vector4d &rotation)
{
    const double squared = rotation.squaredNorm();
    return squared > 1e-24 ? Eigen::Vector4d(rotation / std::sqrt(squared)) : Eigen::Vector4d::UnitW();
}

/// The first key behind a time. Pieces are mostly made one after the other.
std::vector<float>::const_iterator keyBehind(const std::vector<float> &times, float from, size_t near)
{
    for (size_t behind = near + 1; behind < std::min(near + 3, times.size()); ++behind) {
        if (times[behind - 1] <= from && from < times[behind])
            return times.begin() + long(behind);
    }
    return std::upper_bound(times.begin(), times.end(), from);
}

} // namespace

RyGltfCurvePiece::RyGltfCurvePiece(const RyGltfCurve &curve, float from, float to, size_t near) : m_curve(curve)
{
    const auto behind = keyBehind(curve.times, from, near);
    m_key = behind == curve.times.begin() ? 0 : size_t(behind - curve.times.begin()) - 1;
    m_first = fourOf(curve, m_key);
    const bool isTurn = curve.components == 4 && curve.kind != RyGltfCurve::Cubic;
    if (isTurn)
        m_first = unit(m_first);
    m_isFlat =
        curve.kind == RyGltfCurve::Step || behind == curve.times.begin() || behind == curve.times.end() || from == to;
    if (m_isFlat)
        return;
    m_from = double(curve.times[m_key]);
    m_span = double(curve.times[m_key + 1]) - m_from;
    if (curve.kind != RyGltfCurve::Linear)
        return;
    m_second = fourOf(curve, m_key + 1);
    if (isTurn)
        findTurn();
    m_isFlat = m_first == m_second;
}

void RyGltfCurvePiece::findTurn()
{
    m_second = unit(m_second);
    const double cosine = m_first.dot(m_second);
    if (cosine < 0.0)
        m_second = -m_second;
    m_angle = std::acos(std::min(1.0, std::abs(cosine)));
    m_sine = std::sin(m_angle);
}

std::optional<RyGltfCurvePiece::Line> RyGltfCurvePiece::line() const
{
    const Eigen::Vector3d from = m_first.head<3>(), to = m_second.head<3>();
    if (m_isFlat)
        return Line{from, from, Eigen::Vector3d::Zero()};
    if (m_curve.kind != RyGltfCurve::Linear)
        return std::nullopt;
    return Line{from, to, (to - from) / m_span};
}

std::optional<Eigen::Vector3d> RyGltfCurvePiece::angularVelocity() const
{
    if (m_isFlat)
        return Eigen::Vector3d(Eigen::Vector3d::Zero());
    if (m_curve.kind != RyGltfCurve::Linear || !(m_sine > 1e-9))
        return std::nullopt;
    const Eigen::Vector3d axis = (Eigen::Quaterniond(m_first).conjugate() * Eigen::Quaterniond(m_second)).vec();
    return Eigen::Vector3d(axis.normalized() * (2.0 * m_angle / m_span));
}

/// Four numbers, of which a vector takes three; of a cubic spline, a rotation of any length.
Eigen::Vector4d RyGltfCurvePiece::at(double time) const
{
    if (m_isFlat)
        return m_first;
    const double u = (time - m_from) / m_span;
    if (m_curve.kind == RyGltfCurve::Cubic)
        return onSpline(u);
    if (u == 0.0) // saves the sines at most keys
        return m_first;
    if (m_sine > 1e-9 && m_curve.components == 4)
        return std::sin((1.0 - u) * m_angle) / m_sine * m_first + std::sin(u * m_angle) / m_sine * m_second;
    return (1.0 - u) * m_first + u * m_second;
}

Eigen::Vector4d RyGltfCurvePiece::onSpline(double u) const
{
    const int n = m_curve.components;
    const double *a = m_curve.key(m_key), *b = m_curve.key(m_key + 1);
    const double *out = a + n, *in = b - n;
    const double u2 = u * u, u3 = u2 * u;
    Eigen::Vector4d result = Eigen::Vector4d::Zero();
    for (int i = 0; i < n; ++i) {
        result[i] = (2 * u3 - 3 * u2 + 1) * a[i] + m_span * (u3 - 2 * u2 + u) * out[i] + (3 * u2 - 2 * u3) * b[i] +
                    m_span * (u3 - u2) * in[i];
    }
    return result;
}

Eigen::Vector3d RyGltfCurvePiece::vector(double time) const
{
    return at(time).head<3>();
}

Eigen::Quaterniond RyGltfCurvePiece::rotation(double time) const
{
    // What lies between two of length one has that length as well.
    const Eigen::Vector4d numbers = at(time);
    return Eigen::Quaterniond(m_curve.kind == RyGltfCurve::Cubic ? unit(numbers) : numbers);
}
