#include "rycore/math/RyMatrix4Utilities.h"

#include "rycore/math/RyFastMath.h"

#include <Eigen/Geometry>
#include <Eigen/SVD>

#include <algorithm>

using RyFastMath::toFloat;

namespace {

struct ScaleAndTurn
{
    Eigen::Vector3d scale;
    Eigen::Matrix3d turn;
};

Eigen::Matrix3d nearestRotation(const Eigen::Matrix3d &linear)
{
    const Eigen::JacobiSVD<Eigen::Matrix3d> svd(linear, Eigen::ComputeFullU | Eigen::ComputeFullV);
    const Eigen::Matrix3d turn = svd.matrixU() * svd.matrixV().transpose();
    if (turn.determinant() > 0.0)
        return turn;
    return svd.matrixU() * Eigen::Vector3d(1.0, 1.0, -1.0).asDiagonal() * svd.matrixV().transpose();
}

/// Whether the rows stand square to each other as far as single precision tells: a scale followed by a rotation.
bool isScaledRotation(const Eigen::Matrix3d &linear)
{
    for (int i = 0; i < 3; ++i) {
        const auto a = linear.row(i);
        const auto b = linear.row((i + 1) % 3);
        if (std::fabs(a.dot(b)) > 1e-5 * a.norm() * b.norm())
            return false;
    }
    return true;
}

/// Unit rows; what a zero row leaves open is filled so that the result is a rotation close to the identity.
Eigen::Matrix3d completedRows(const Eigen::Matrix3d &linear)
{
    Eigen::Matrix3d rows = linear;
    bool given[3];
    int count = 0;
    for (int i = 0; i < 3; ++i) {
        const double size = rows.row(i).norm();
        given[i] = size > 0.0;
        count += given[i];
        if (given[i])
            rows.row(i) /= size;
    }
    if (count == 0)
        return Eigen::Matrix3d::Identity();
    if (count == 1) {
        const int k = given[0] ? 0 : given[1] ? 1 : 2;
        const Eigen::Vector3d axis = Eigen::Vector3d::Unit(k);
        const Eigen::Vector3d image = rows.row(k).transpose();
        return Eigen::Quaterniond::FromTwoVectors(axis, image).toRotationMatrix().transpose();
    }
    for (int i = 0; i < 3 && count == 2; ++i) {
        if (!given[i])
            rows.row(i) = rows.row((i + 1) % 3).cross(rows.row((i + 2) % 3));
    }
    return rows;
}

ScaleAndTurn splitProper(const Eigen::Matrix3d &linear)
{
    ScaleAndTurn result;
    result.turn = nearestRotation(isScaledRotation(linear) ? completedRows(linear) : linear);
    for (int i = 0; i < 3; ++i)
        result.scale[i] = linear.row(i).dot(result.turn.row(i));
    return result;
}

} // namespace

void RyMatrix4Utilities::decomposeMatrix(const RyMatrix4 &matrix, RyVec3 &translation, RyVec3 &scale, RyQuat &rotation)
{
    Eigen::Matrix3d linear;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            linear(i, j) = matrix[i][j];
    }
    ScaleAndTurn best;
    if (linear.determinant() >= 0.0) {
        best = splitProper(linear);
    } else {
        // The mirrored axis is the one that leaves the smallest turn.
        for (int axis = 0; axis < 3; ++axis) {
            Eigen::Matrix3d mirrored = linear;
            mirrored.row(axis) *= -1.0;
            ScaleAndTurn split = splitProper(mirrored);
            split.scale[axis] *= -1.0;
            if (axis == 0 || split.turn.trace() > best.turn.trace() + 1e-9)
                best = split;
        }
    }
    const Eigen::Quaterniond q(best.turn);
    translation = matrix.translation();
    scale = RyVec3(toFloat(best.scale[0]), toFloat(best.scale[1]), toFloat(best.scale[2]));
    rotation = RyQuat(float(q.x()), float(q.y()), float(q.z()), float(q.w()));
}
