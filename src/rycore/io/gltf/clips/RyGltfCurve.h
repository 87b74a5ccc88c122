#pragma once

#include <Eigen/Geometry>

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

/// One property of a node over the time, as a sampler of the file says it: numbers of the file in double precision.
/// Outside its keys it holds the first and the last value.
struct RyGltfCurve
{
    enum Kind { Step, Linear, Cubic };

    Kind kind = Linear;
    int components = 3;         ///< 4: a rotation, x, y, z, w
    std::vector<float> times;   ///< seconds, strictly rising, at least one
    std::vector<double> values; ///< per key; of cubic splines in-tangent, value and out-tangent

    size_t keyCount() const { return times.size(); }
    int numbersPerKey() const { return kind == Cubic ? 3 * components : components; }
    /// The value of a key, without its tangents.
    const double *key(size_t index) const
    {
        return values.data() + index * size_t(numbersPerKey()) + (kind == Cubic ? components : 0);
    }
    /// Whether it has one value at all times.
    bool isConstant() const;
};

/// A curve between two times that have no key of it between them. At the later one it gives the limit from before, so
/// that a step shows its old value there. The curve must outlive it.
class RyGltfCurvePiece
{
public:
    /// `near`: a key beside which the piece is looked for first.
    RyGltfCurvePiece(const RyGltfCurve &curve, float from, float to, size_t near = 0);

    /// The last one at or before the piece.
    size_t key() const { return m_key; }
    Eigen::Vector3d vector(double time) const;
    Eigen::Quaterniond rotation(double time) const;

    /// Something that changes at one speed; what it is between is that of the keys around the piece, or beyond it.
    struct Line
    {
        Eigen::Vector3d from, to, perSecond;
    };
    /// None for a cubic spline that changes.
    std::optional<Line> line() const;
    /// Of a rotation, about an axis in the turned frame, in radians per second; none for a cubic spline, which has no
    /// single one.
    std::optional<Eigen::Vector3d> angularVelocity() const;

private:
    void findTurn();
    Eigen::Vector4d at(double time) const;
    Eigen::Vector4d onSpline(double share) const;

    const RyGltfCurve &m_curve;
    size_t m_key;
    bool m_isFlat;       // holds the value of that key
    double m_from = 0.0; // of the two keys around it
    double m_span = 1.0;
    // What they say, but for cubic splines; rotations of length one, on one side.
    Eigen::Vector4d m_first = Eigen::Vector4d::Zero(), m_second = Eigen::Vector4d::Zero();
    double m_angle = 0.0; // of a slerp: half the turn
    double m_sine = 1.0;
};
