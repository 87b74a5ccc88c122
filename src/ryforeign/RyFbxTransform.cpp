#include "ryforeign/RyFbxTransform.h"

#include <algorithm>
#include <cmath>

namespace {

using Vector = RyForeignPivot::Vector;

constexpr double degree = 0.017453292519943295;
constexpr const char *names[] = {"RotationOffset",       "RotationPivot",     "ScalingOffset",    "ScalingPivot",
                                 "GeometricTranslation", "GeometricRotation", "GeometricScaling", "PreRotation",
                                 "PostRotation",         "Lcl Scaling",       "RotationActive",   "RotationOrder",
                                 "InheritType"};

/// About X, then Y, then Z, in degrees.
RyAffine turned(const Vector &angles)
{
    RyAffine all;
    for (int axis = 0; axis < 3; ++axis) {
        const double c = std::cos(angles[size_t(axis)] * degree), s = std::sin(angles[size_t(axis)] * degree);
        const int next = (axis + 1) % 3, last = (axis + 2) % 3;
        RyAffine one;
        one.m[next][next] = one.m[last][last] = c;
        one.m[next][last] = s;
        one.m[last][next] = -s;
        all = all * one;
    }
    return all;
}

/// The turn back, in the same order of axes.
Vector turnedBack(const Vector &angles)
{
    const RyAffine back = turned(angles).inverse();
    // Rows are where the axes go: the first is (cy cz, cy sz, -sy).
    const double up = std::clamp(-back.m[0][2], -1.0, 1.0);
    Vector all{0.0, std::asin(up) / degree, 0.0};
    if (std::hypot(back.m[0][0], back.m[0][1]) > 1e-9) {
        all[0] = std::atan2(back.m[1][2], back.m[2][2]) / degree;
        all[2] = std::atan2(back.m[0][1], back.m[0][0]) / degree;
    } else { // the turns about X and Z are about one axis
        all[0] = std::atan2(-back.m[2][1], back.m[1][1]) / degree;
    }
    return all;
}

} // namespace

bool RyFbxTransform::isKnown(const QByteArray &name)
{
    return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

void RyFbxTransform::add(const QByteArray &name, const Vector &value)
{
    constexpr double largest = 1e30; // the library has such numbers with four bytes
    if (std::all_of(value.begin(), value.end(), [](double part) { return std::abs(part) <= largest; }))
        m_values.insert(name, value);
}

Vector RyFbxTransform::valueOf(const char *name, double otherwise) const
{
    return m_values.value(name, {otherwise, otherwise, otherwise});
}

RyForeignPivot RyFbxTransform::pivot() const
{
    RyForeignPivot pivot;
    pivot.rotationOffset = valueOf("RotationOffset");
    pivot.rotationPivot = valueOf("RotationPivot");
    pivot.scalingOffset = valueOf("ScalingOffset");
    pivot.scalingPivot = valueOf("ScalingPivot");
    pivot.scaling = valueOf("Lcl Scaling", 1.0);
    const Vector scale = valueOf("GeometricScaling", 1.0), move = valueOf("GeometricTranslation");
    pivot.geometric = RyAffine::fromScale(scale[0], scale[1], scale[2]) * turned(valueOf("GeometricRotation")) *
                      RyAffine::fromTranslation(move[0], move[1], move[2]);
    return pivot;
}

bool RyFbxTransform::hasPivot() const
{
    const RyForeignPivot all = pivot();
    return all.hasPoints() || !(all.geometric == RyAffine());
}

RyForeignScaling RyFbxTransform::scaling() const
{
    const double type = valueOf("InheritType", 1.0)[0];
    if (type == 0.0)
        return RyForeignScaling::Apart;
    return type == 2.0 ? RyForeignScaling::NotOfParent : RyForeignScaling::Usual;
}

std::vector<std::pair<QByteArray, Vector>> RyFbxTransform::changes() const
{
    std::vector<std::pair<QByteArray, Vector>> all;
    const auto change = [&](const char *name, const Vector &to) {
        if (m_values.value(name, to) != to)
            all.emplace_back(name, to);
    };
    for (const char *name : {"RotationOffset", "RotationPivot", "ScalingOffset", "ScalingPivot", "GeometricTranslation",
                             "GeometricRotation"}) {
        change(name, {});
    }
    change("GeometricScaling", {1.0, 1.0, 1.0});
    if (valueOf("RotationActive")[0] != 0.0) {
        if (valueOf("PostRotation") != Vector{})
            change("PostRotation", turnedBack(valueOf("PostRotation")));
        return all;
    }
    for (const char *name : {"PreRotation", "PostRotation", "RotationOrder"})
        change(name, {});
    return all;
}
