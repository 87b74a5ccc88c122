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

RyGltfCurvePiece::RyGltfCurvePiece(const RyGltfCurve &curve, float from, float to) : m_curve(curve)
{
    const auto behind = std::upper_bound(curve.times.begin(), curve.times.end(), from);
    m_key = behind == curve.times.begin() ? 0 : size_t(behind - curve.times.begin()) - 1;
    m_isFlat =
        curve.kind == RyGltfCurve::Step || behind == curve.times.begin() || behind == curve.times.end() || from == to;
    if (m_isFlat)
        return;
    m_from = double(curve.times[m_key]);
    m_span = double(curve.times[m_key + 1]) - m_from;
    if (curve.kind != RyGltfCurve::Linear || curve.components != 4)
        return;
    const Eigen::Map<const Eigen::Vector4d> a(curve.key(m_key)), b(curve.key(m_key + 1));
    m_sizes = {std::max(1e-300, a.norm()), std::max(1e-300, b.norm())};
    const double cosine = a.dot(b) / (m_sizes[0] * m_sizes[1]);
    m_sign = cosine < 0.0 ? -1.0 : 1.0;
    m_angle = std::acos(std::min(1.0, std::abs(cosine)));
    m_sine = std::sin(m_angle);
}

bool RyGltfCurvePiece::standsStill() const
{
    const double *key = m_curve.key(m_key);
    return m_isFlat ||
           (m_curve.kind == RyGltfCurve::Linear && std::equal(key, key + m_curve.components, m_curve.key(m_key + 1)));
}

std::optional<RyGltfCurvePiece::Line> RyGltfCurvePiece::line() const
{
    const Eigen::Vector3d from(m_curve.key(m_key));
    if (standsStill())
        return Line{from, from, Eigen::Vector3d::Zero()};
    if (m_curve.kind != RyGltfCurve::Linear)
        return std::nullopt;
    const Eigen::Vector3d to(m_curve.key(m_key + 1));
    return Line{from, to, (to - from) / m_span};
}

std::optional<Eigen::Vector3d> RyGltfCurvePiece::angularVelocity() const
{
    if (standsStill())
        return Eigen::Vector3d(Eigen::Vector3d::Zero());
    const Eigen::Quaterniond a(m_curve.key(m_key)), b(m_curve.key(m_key + 1));
    if (m_curve.kind != RyGltfCurve::Linear || !(m_sine > 1e-9) || !(m_sizes[0] * m_sizes[1] > 1e-12))
        return std::nullopt;
    const Eigen::Vector3d axis = (a.conjugate() * b).vec() * m_sign;
    return Eigen::Vector3d(axis.normalized() * (2.0 * m_angle / m_span));
}

std::array<double, 4> RyGltfCurvePiece::at(double time) const
{
    std::array<double, 4> result{};
    const int n = m_curve.components;
    const double *a = m_curve.key(m_key);
    if (m_isFlat) {
        std::copy_n(a, n, result.begin());
        return result;
    }
    const double *b = m_curve.key(m_key + 1);
    const double u = share(time);
    if (u == 0.0) { // saves the sines at most keys
        for (int i = 0; i < n; ++i)
            result[size_t(i)] = a[i] / m_sizes[0];
        return result;
    }
    double fromA = 1.0 - u, fromB = u;
    if (m_curve.kind == RyGltfCurve::Cubic) {
        const double *out = a + n, *in = b - n;
        const double u2 = u * u, u3 = u2 * u;
        for (int i = 0; i < n; ++i) {
            result[size_t(i)] = (2 * u3 - 3 * u2 + 1) * a[i] + m_span * (u3 - 2 * u2 + u) * out[i] +
                                (3 * u2 - 2 * u3) * b[i] + m_span * (u3 - u2) * in[i];
        }
        return result;
    }
    if (n == 4 && m_sine > 1e-9) {
        fromA = std::sin((1.0 - u) * m_angle) / m_sine;
        fromB = std::sin(u * m_angle) / m_sine;
    }
    for (int i = 0; i < n; ++i)
        result[size_t(i)] = fromA * a[i] / m_sizes[0] + fromB * m_sign * b[i] / m_sizes[1];
    return result;
}

Eigen::Vector3d RyGltfCurvePiece::vector(double time) const
{
    const std::array<double, 4> numbers = at(time);
    return {numbers[0], numbers[1], numbers[2]};
}

Eigen::Quaterniond RyGltfCurvePiece::rotation(double time) const
{
    const std::array<double, 4> numbers = at(time);
    Eigen::Quaterniond result(numbers[3], numbers[0], numbers[1], numbers[2]);
    if (!(result.squaredNorm() > 1e-24))
        return Eigen::Quaterniond::Identity();
    return result.normalized();
}
