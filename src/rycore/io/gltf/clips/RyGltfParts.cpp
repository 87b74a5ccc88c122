#include "rycore/io/gltf/clips/RyGltfParts.h"

#include <Eigen/SVD>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Of the factors of a map, as far as they fit its reflection.
Eigen::Vector3d signsFor(const Eigen::Affine3d &map, const Eigen::Vector3d &signs)
{
    const Eigen::Vector3d sign = signs.unaryExpr([](double factor) { return factor < 0.0 ? -1.0 : 1.0; });
    const bool fits = map.linear().determinant() * sign.prod() >= 0.0;
    return fits ? sign : Eigen::Vector3d(-sign); // one factor stays one factor
}

/// Turns about one axis after the other until what is left of the map behind the turn, `rest`, misses its own diagonal
/// by as little as it can. Of a sheared map the polar decomposition is only near to that.
void settle(Eigen::Matrix3d &turn, Eigen::Matrix3d &rest)
{
    constexpr int MostRounds = 30; // two or three do for what a figure has
    constexpr double Smallest = 1e-12;
    double largest = 1.0;
    for (int round = 0; round < MostRounds && largest > Smallest; ++round) {
        largest = 0.0;
        for (int i = 0; i < 3; ++i) {
            const int j = (i + 1) % 3;
            // The sum of the squares of the diagonal, by twice the angle.
            const double across = rest(i, i) * rest(j, i) - rest(j, j) * rest(i, j);
            const double along =
                rest(i, i) * rest(i, i) + rest(j, j) * rest(j, j) - rest(j, i) * rest(j, i) - rest(i, j) * rest(i, j);
            const double angle = 0.5 * std::atan2(2.0 * across, along);
            if (!(std::abs(angle) > Smallest))
                continue;
            largest = std::max(largest, std::abs(angle));
            Eigen::Matrix3d step = Eigen::Matrix3d::Identity();
            step(i, i) = step(j, j) = std::cos(angle);
            step(j, i) = std::sin(angle);
            step(i, j) = -step(j, i);
            turn = turn * step;
            rest = step.transpose() * rest;
        }
    }
}

} // namespace

RyGltfParts RyGltfParts::straight(const Eigen::Affine3d &map, const Eigen::Vector3d &signs)
{
    RyGltfParts parts;
    parts.translation = map.translation();
    parts.scale = map.linear().colwise().norm().transpose().cwiseProduct(signsFor(map, signs));
    const Eigen::Matrix3d turn = map.linear() * parts.scale.cwiseInverse().asDiagonal();
    parts.rotation = Eigen::Quaterniond(turn).normalized();
    return parts;
}

RyGltfParts RyGltfParts::nearest(const Eigen::Affine3d &map, const Eigen::Vector3d &signs)
{
    RyGltfParts parts;
    parts.translation = map.translation();
    const Eigen::Vector3d sign = signsFor(map, signs);
    const Eigen::Matrix3d straight = map.linear() * sign.asDiagonal();
    const Eigen::JacobiSVD<Eigen::Matrix3d> svd(straight, Eigen::ComputeFullU | Eigen::ComputeFullV);
    // Of a map that is flat, or nothing, the last direction is free: so that it makes no reflection.
    const double last = (svd.matrixU() * svd.matrixV().transpose()).determinant() < 0.0 ? -1.0 : 1.0;
    const Eigen::Vector3d free(1.0, 1.0, last);
    Eigen::Matrix3d turn = svd.matrixU() * free.asDiagonal() * svd.matrixV().transpose();
    const Eigen::Vector3d sizes = svd.singularValues().cwiseProduct(free);
    Eigen::Matrix3d stretch = svd.matrixV() * sizes.asDiagonal() * svd.matrixV().transpose();
    settle(turn, stretch);
    parts.rotation = Eigen::Quaterniond(turn).normalized();
    parts.scale = stretch.diagonal().cwiseProduct(sign);
    return parts;
}

RyGltfParts RyGltfParts::of(const RyGltfTransform &transform)
{
    if (transform.hasMatrix)
        return nearest(ryGltfColumns(transform.toAffine()));
    RyGltfParts parts;
    parts.translation = Eigen::Vector3d(transform.translation.data());
    parts.rotation =
        Eigen::Quaterniond(transform.rotation[3], transform.rotation[0], transform.rotation[1], transform.rotation[2]);
    if (!(parts.rotation.squaredNorm() > 1e-24))
        parts.rotation = Eigen::Quaterniond::Identity();
    parts.rotation.normalize();
    parts.scale = Eigen::Vector3d(transform.scale.data());
    return parts;
}

Eigen::Affine3d RyGltfParts::map() const
{
    Eigen::Affine3d map;
    map.linear() = rotation.toRotationMatrix() * scale.asDiagonal();
    map.translation() = translation;
    map.makeAffine();
    return map;
}

RyGltfTransform RyGltfParts::transform() const
{
    RyGltfTransform transform;
    transform.translation = {translation.x(), translation.y(), translation.z()};
    transform.rotation = {rotation.x(), rotation.y(), rotation.z(), rotation.w()};
    transform.scale = {scale.x(), scale.y(), scale.z()};
    return transform;
}

Eigen::Affine3d ryGltfColumns(const RyAffine &rows)
{
    Eigen::Affine3d map = Eigen::Affine3d::Identity();
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            map.linear()(column, row) = rows.m[row][column];
        map.translation()(row) = rows.m[3][row];
    }
    return map;
}

RyGltfParts ryGltfBetween(const RyGltfParts &a, const RyGltfParts &b, double share)
{
    return {a.translation + share * (b.translation - a.translation), a.rotation.slerp(share, b.rotation),
            a.scale + share * (b.scale - a.scale)};
}

double ryGltfDistance(const Eigen::Affine3d &a, const Eigen::Affine3d &b, double reach)
{
    // The Frobenius norm is no less than the largest factor by which a direction grows.
    const double distance = (a.translation() - b.translation()).norm() + reach * (a.linear() - b.linear()).norm();
    return std::isfinite(distance) ? distance : std::numeric_limits<double>::infinity();
}
