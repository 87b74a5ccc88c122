#include "pluginsource/RyJointTools/tool/drags/bringToPlace.h"

#include "rycore/math/RyAffine.h"

#include <Eigen/Dense>

#include <algorithm>

using Eigen::Matrix3d;
using Eigen::Vector3d;

static Vector3d toEigen(const RyVec3 &v)
{
    return {double(v.x), double(v.y), double(v.z)};
}

static RyVec3 fromEigen(const Vector3d &v)
{
    return {float(v.x()), float(v.y()), float(v.z())};
}

/// The inverse of a map without its translation, for columns.
static Matrix3d inverseLinear(const RyAffine &map)
{
    const RyAffine inverse = map.inverse();
    Matrix3d result;
    for (int k = 0; k < 3; ++k)
        result.col(k) = toEigen(inverse.mapDirection(RyVec3::axis(k)));
    return result;
}

void bringToPlace(const RyVec3 &target, const RyVec3 &value, const RyVec3 &placeOfValue, const RyAffine &toWorld,
                  const std::function<RyVec3(const RyVec3 &)> &place)
{
    constexpr int mostTries = 24;
    constexpr double closeEnough = 1e-5; // of the size of the numbers, which is what they can tell apart
    const double size = std::max({1.0, toEigen(target).norm(), toEigen(placeOfValue).norm()});
    Matrix3d inverse = inverseLinear(toWorld); // how the value answers the place
    Vector3d now = toEigen(value);
    Vector3d missing = toEigen(target) - toEigen(placeOfValue);
    Vector3d placed = now;
    double reach = 1.0; // of a step, shortened when one leads away
    for (int i = 0; i < mostTries && missing.norm() > closeEnough * size; ++i) {
        const Vector3d step = inverse * missing * reach;
        placed = now + step;
        const Vector3d missingThen = toEigen(target) - toEigen(place(fromEigen(placed)));
        const Vector3d answer = missing - missingThen;
        const double along = step.dot(inverse * answer);
        if (std::abs(along) > 1e-12 * step.squaredNorm())
            inverse += (step - inverse * answer) * (step.transpose() * inverse) / along;
        if (missingThen.norm() < missing.norm()) {
            now = placed;
            missing = missingThen;
            reach = 1.0;
        } else {
            reach /= 2.0;
        }
    }
    if (placed != now)
        place(fromEigen(now));
}
